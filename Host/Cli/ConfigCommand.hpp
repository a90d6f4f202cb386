#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// The options that a settings file keeps, for when neither the command line nor the environment
/// gives them: those of `KeptOption`, and the password of the content server.
namespace Varnholt::Host::ConfigCommand {

constexpr char c_Password[] = "content-password";

/// "content-url", "dev-channel" and so on.
QStringList Keys();
/// Empty when it is not set. \param p_Kept everything that the settings file holds
QString Value(SettingsFile::Values const& p_Kept, QString const& p_Key);
/// The value for people; instead of a password, that there is one.
QString Shown(SettingsFile::Values const& p_Kept, QString const& p_Key);

/// \param p_Value an empty one removes the key
std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value);
/// The keys that are set.
QStringList SetKeys(SettingsFile::Values const& p_Kept);
/// What is kept as an option and is none, each with the key that may be meant.
std::vector<Failure> UnknownKeys(SettingsFile::Values const& p_Kept);

/// The value in force for a key, written as `Shown()` writes it, and where it comes from: command
/// line, environment, settings file or default. \param p_Choice with its environment
GivenOption InForce(Choice const& p_Choice, SettingsFile::Values const& p_Kept,
                    QString const& p_Key);

/// Adds what the environment says in variables that are no option's. To be called once, before
/// there is a session, which has one of them say something else.
/// \return why what it says cannot be used; it still stands above what is kept
std::optional<Failure> TakeEnvironment(Choice& p_Choice);

/// Fills in what is kept, where neither the command line nor the environment gives anything.
/// \return the values kept that are none; the options then stay as they were
std::vector<Failure> Complete(Choice& p_Choice, SettingsFile::Values const& p_Kept);

} // namespace Varnholt::Host::ConfigCommand
