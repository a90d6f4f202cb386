#pragma once

#include "Host/Core/Module/RunGate.hpp"
#include "Host/Core/Settings/HostSettings.hpp"
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

} // namespace Varnholt::Host
