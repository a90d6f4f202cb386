#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

#include <QString>
#include <QStringList>

#include <optional>

/// The options that a settings file keeps, for when neither the command line nor the environment
/// gives them: those of `KeptOption`, and the password of the content server.
namespace Varnholt::Host::ConfigCommand {

constexpr char c_Password[] = "content-password";

/// "content-url", "dev-channel" and so on.
QStringList Keys();
/// Empty when it is not set.
QString Value(HostSettings const& p_Settings, QString const& p_Key);
/// The value for people; instead of a password, that there is one.
QString Shown(HostSettings const& p_Settings, QString const& p_Key);

/// \param p_Value an empty one removes the key
std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value);
/// The keys that are set.
QStringList SetKeys(HostSettings const& p_Settings);

/// The value in force for a key, written as `Shown()` writes it, and where it comes from: command
/// line, environment, settings file or default. \param p_Choice after `Complete`
GivenOption InForce(Choice const& p_Choice, HostSettings const& p_Settings, QString const& p_Key);

/// Fills in what is kept, where neither the command line nor the environment gives anything.
/// \return why the first invalid value that is kept is one; its option stays as it was
std::optional<Failure> Complete(Choice& p_Choice, HostSettings const& p_Settings);

} // namespace Varnholt::Host::ConfigCommand
