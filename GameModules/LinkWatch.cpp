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
    return Ask(&LinkGuard::OnTheWay, p_Folder, p_Path);
}

bool LinkWatch::LeadsOut(QString const& p_Folder, QString const& p_Path)
{
    return Ask(&LinkGuard::LeadingOut, p_Folder, p_Path);
}

bool LinkWatch::MakeRoom(QString const& p_Folder, QString const& p_Path)
{
    std::optional<LinkGuard::Link> link;
    {
        QMutexLocker const lock(&Mutex);
        Settle(p_Folder);
        link = Guard.LeadingOut(p_Path);
    }
    if (!link)
        return true;
    // A link of a folder above the file stays: it may be the player's.
    if (link->Path != p_Folder + p_Path || !QFile::remove(link->Path))
        return !LeadsOut(p_Folder, p_Path);
    qCWarning(LogComparison) << Name << "replaces the symbolic link" << link->Path
                             << "by a file: it leads out of the game folder, to" << link->Target;
    return true;
}

bool LinkWatch::Ask(Question p_Question, QString const& p_Folder, QString const& p_Path)
{
    std::optional<LinkGuard::Link> link;
    bool isNew = false;
    {
        QMutexLocker const lock(&Mutex);
        Settle(p_Folder);
        link = (Guard.*p_Question)(p_Path);
        isNew = link && !Warned.contains(p_Path);
        if (isNew)
            Warned.insert(p_Path);
    }
    if (isNew)
        qCWarning(LogComparison) << Name << "leaves" << p_Path << "alone: the symbolic link"
                                 << link->Path << "is not followed, to" << link->Target;
    return link.has_value();
}

} // namespace Varnholt::Launcher
