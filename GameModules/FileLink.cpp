#include "GameModules/FileLink.hpp"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Launcher::FileLink {

bool IsPlayers(QString const& p_Path)
{
    // Not by QFileInfo, which tells the owner of what the link leads to.
    struct stat link {};
    return ::lstat(QFile::encodeName(p_Path).constData(), &link) == 0 && S_ISLNK(link.st_mode) &&
           (link.st_uid == ::geteuid() || link.st_uid == 0);
}

Kind At(QString const& p_Path)
{
    QFileInfo const file(p_Path);
    if (!file.isSymbolicLink())
        return Kind::None;
    return file.isFile() && IsPlayers(p_Path) ? Kind::Players : Kind::Strange;
}

} // namespace Varnholt::Launcher::FileLink
