#pragma once

#include "Host/Core/Module/RunGate.hpp"
#include "Host/Core/Settings/HostSettings.hpp"
#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/LauncherLocale.hpp"

#include <QString>

#include <functional>

namespace Varnholt::Host {

/// What the module's callbacks reach. Everything here may be used on any thread.
struct HostEnvironment {
    HostSettings& Settings;
    RunGate& Gate;
    bool UseDevChannel = false;
    Launcher::LauncherLocale Locale;
    std::function<void(QString)> OnError;     ///< must not block
    std::function<void()> OnDownloadStarting; ///< must not block
};

/// The host's side of the module's callback table.
///
/// The table holds plain functions that do not know which host they belong to, so that one
/// environment serves the whole process. Without one the callbacks answer so that a module stops.
namespace HostCallbacks {

/// Makes the environment the process's own: before a module is loaded, since a second loading
/// gives the first one's object.
/// \return false when another environment is in place already
bool Claim(HostEnvironment& p_Environment);

/// Changes the launcher's language. Any thread.
void SetLocale(HostEnvironment& p_Environment, Launcher::LauncherLocale const& p_Locale);

/// Fills in every callback.
void Install(Launcher::Application& p_Application);

/// Returns when no callback uses the environment any more.
void Remove(HostEnvironment& p_Environment);

} // namespace HostCallbacks

} // namespace Varnholt::Host
