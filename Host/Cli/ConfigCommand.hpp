#pragma once

#include "Host/Core/Failure.hpp"
#include "Host/Core/HostSettings.hpp"

#include <QString>
#include <QStringList>

#include <optional>

/// The options that a settings file keeps, for when neither the command line nor the environment
/// gives them.
namespace Varnholt::Host::ConfigCommand {

/// "content-url", "dev-channel" and so on.
QStringList Keys();
/// Empty when it is not set.
QString Value(HostSettings const& p_Settings, QString const& p_Key);
/// True when it is set to "true".
bool Flag(HostSettings const& p_Settings, QString const& p_Key);

/// \param p_Value an empty one removes the key
std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value);
/// The keys that are set.
QStringList SetKeys(HostSettings const& p_Settings);

} // namespace Varnholt::Host::ConfigCommand
