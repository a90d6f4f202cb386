#include "Launcher/Application/LogCategories.hpp"

namespace Varnholt::Launcher {

Q_LOGGING_CATEGORY(LogStartup, "varnholt.startup", QtWarningMsg)
Q_LOGGING_CATEGORY(LogComparison, "varnholt.comparison", QtWarningMsg)
Q_LOGGING_CATEGORY(LogDownload, "varnholt.download", QtWarningMsg)
Q_LOGGING_CATEGORY(LogLaunch, "varnholt.launch", QtWarningMsg)
Q_LOGGING_CATEGORY(LogLanguage, "varnholt.language", QtWarningMsg)

} // namespace Varnholt::Launcher
