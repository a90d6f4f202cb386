#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// A pending list in the game folder: UTF-8 text, one relative path per line, each line ended by
/// "\n", no header. It survives a crash whole: it is only ever replaced, never written in place. A
/// symbolic link in its place is no list: it is not read, and gives way to the list.
namespace Varnholt::Launcher::PendingList {

inline QString const c_Base = QStringLiteral("ToDownloadBase.db"); ///< base files
inline QString const c_Streamed = QStringLiteral("ToDownload.db"); ///< streamed files
/// Of another storage, only ever removed.
inline QString const c_Casc = QStringLiteral("ToDownloadCASC.db");
/// There while the two lists do not hold yet all that a first build finds: empty at first, then the
/// name of the list that is still owed.
inline QString const c_FirstBuild = QStringLiteral("FirstBuild.db");

struct Content {
    bool Opened = false;   ///< false: no list, or not readable
    bool Complete = false; ///< false: reading was stopped before its end
    QStringList Paths;
};

/// \param p_Continue asked before each line; false ends the reading
Content Read(QString const& p_ListPath, std::function<bool()> const& p_Continue);

/// Replaces the list. \return false when it cannot be written; the old one then stays
bool Write(QString const& p_ListPath, QStringList const& p_Paths);

/// Removes every line that equals p_Struck and appends p_Added when it is not empty. Creates the
/// list when there is none. A list whose reading was stopped by p_Continue stays as it is: written
/// back it would lose the lines behind.
void Update(QString const& p_ListPath, QString const& p_Struck, QString const& p_Added,
            std::function<bool()> const& p_Continue);

} // namespace Varnholt::Launcher::PendingList
