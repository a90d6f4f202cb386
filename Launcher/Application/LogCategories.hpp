#pragma once

#include <QLoggingCategory>

namespace Varnholt::Launcher {

// One category for each concern; everything is logged at warning level and so shown by default.
Q_DECLARE_LOGGING_CATEGORY(LogStartup)    // varnholt.startup
Q_DECLARE_LOGGING_CATEGORY(LogComparison) // varnholt.comparison
Q_DECLARE_LOGGING_CATEGORY(LogDownload)   // varnholt.download
Q_DECLARE_LOGGING_CATEGORY(LogLaunch)     // varnholt.launch
Q_DECLARE_LOGGING_CATEGORY(LogLanguage)   // varnholt.language

} // namespace Varnholt::Launcher
