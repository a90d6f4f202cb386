#include "GameModules/LinkWatch.hpp"

#include "Launcher/Application/LogCategories.hpp"

#include <QFile>
#include <QMutexLocker>

namespace Varnholt::Launcher {

LinkWatch::LinkWatch(QString const& p_Name)
    : Name(p_Name)
{
}

void LinkWatch::Begin(QString const& p_Folder)
{
    QMutexLocker const lock(&Mutex);
    Guard = LinkGuard();
    Settle(p_Folder);
}

void LinkWatch::Settle(QString const& p_Folder)
{
    if (Guard.Folder == p_Folder)
        return;
    Guard = LinkGuard(p_Folder);
    Warned.clear();
}

void LinkWatch::LookAgain()
{
    QMutexLocker const lock(&Mutex);
    Guard = LinkGuard(Guard.Folder);
}

bool LinkWatch::IsBarred(QString const& p_Folder, QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    Settle(p_Folder);
    return Warn(p_Path, Guard.OnTheWay(p_Path));
}

bool LinkWatch::LeadsOut(QString const& p_Folder, QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    Settle(p_Folder);
    return Warn(p_Path, Guard.LeadingOut(p_Path));
}

bool LinkWatch::MakeRoom(QString const& p_Folder, QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    Settle(p_Folder);
    auto const link = Guard.LeadingOut(p_Path);
    if (!link)
        return true;
    // Any other link is one on the way: what it leads to is no place for a file of ours.
    if (link->Path != Guard.Folder + p_Path || !QFile::remove(link->Path))
        return !Warn(p_Path, link);
    qCWarning(LogComparison) << Name << "replaces the symbolic link" << link->Path
                             << "by a file: it leads out of the game folder, to" << link->Target;
    return true;
}

bool LinkWatch::Warn(QString const& p_Path, std::optional<LinkGuard::Link> const& p_Link)
{
    if (!p_Link)
        return false;
    if (!Warned.contains(p_Path)) {
        Warned.insert(p_Path);
        qCWarning(LogComparison) << Name << "leaves" << p_Path << "alone: the symbolic link"
                                 << p_Link->Path << "leads out of the game folder, to"
                                 << p_Link->Target;
    }
    return true;
}

} // namespace Varnholt::Launcher
