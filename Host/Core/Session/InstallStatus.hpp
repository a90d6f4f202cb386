#pragma once

#include "Host/Core/Session/RunFollower.hpp"

#include <QMetaType>
#include <QString>

#include <optional>

namespace Varnholt::Host {

/// What is known of an installation without asking a server.
struct InstallStatus {
    QString Name;
    bool IsInstalled = false;
    QString Folder;
    bool FolderExists = false;
    QString Locale;
    QString Build;                       ///< last build that was completed, empty when none was
    int PendingBase = 0;                 ///< files of the pending lists
    int PendingStreamed = 0;             ///< files of the pending lists
    bool IsUnfinished = false;           ///< a run was begun and not completed
    std::optional<RunningHost> Download; ///< of another program, under way in the folder
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::InstallStatus)
