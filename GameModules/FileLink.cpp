#include "GameModules/FileLink.hpp"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Launcher::FileLink {

namespace {

/// Not by QFileInfo, which tells the owner of what a link leads to, and asks the system each time.
struct stat StatusOf(QString const& p_Path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(p_Path).constData(), &status) != 0)
        status = {};
    return status;
}

} // namespace

bool IsPlayers(QString const& p_Path)
{
    struct stat const link = StatusOf(p_Path);
    return S_ISLNK(link.st_mode) && (link.st_uid == ::geteuid() || link.st_uid == 0);
}

Kind At(QString const& p_Path)
{
    QFileInfo const file(p_Path);
    if (!file.isSymbolicLink())
        return Kind::None;
    return file.isFile() && IsPlayers(p_Path) ? Kind::Players : Kind::Strange;
}

bool IsFile(QString const& p_Path)
{
    return S_ISREG(StatusOf(p_Path).st_mode) || At(p_Path) == Kind::Players;
}

} // namespace Varnholt::Launcher::FileLink
