#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace Varnholt::Launcher {

/// A pending list in the game folder: UTF-8 text, one relative path per line, each line ended by
/// "\n", no header. It survives a crash whole: it is only ever replaced, never written in place. A
/// symbolic link in its place is no list: it is not read, and gives way to the list.
class PendingList {
public:
    static QString const c_Base;     ///< "ToDownloadBase.db", base files
    static QString const c_Streamed; ///< "ToDownload.db", streamed files
    static QString const c_Casc;     ///< "ToDownloadCASC.db", of another storage, only ever removed
    /// "FirstBuild.db", empty: there while the two lists do not hold yet all that a first build
    /// finds.
    static QString const c_FirstBuild;

    struct Content {
        bool Opened = false;   ///< false: no list, or not readable
        bool Complete = false; ///< false: reading was stopped before its end
        QStringList Paths;
    };

    /// \param p_Continue asked before each line; false ends the reading
    static Content Read(QString const& p_ListPath, std::function<bool()> const& p_Continue);

    /// Replaces the list. \return false when it cannot be written; the old one then stays
    static bool Write(QString const& p_ListPath, QStringList const& p_Paths);

    /// Removes every line that equals p_Struck and appends p_Added when it is not empty. Creates
    /// the list when there is none. A list whose reading was stopped by p_Continue stays as it is:
    /// written back it would lose the lines behind.
    static void Update(QString const& p_ListPath, QString const& p_Struck, QString const& p_Added,
                       std::function<bool()> const& p_Continue);
};

} // namespace Varnholt::Launcher
