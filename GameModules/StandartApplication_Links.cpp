#include "GameModules/StandartApplication.hpp"

#include "Launcher/Application/LogCategories.hpp"

#include <QFile>
#include <QMutexLocker>

namespace Varnholt::Launcher {

void StandartApplication::LookAtLinksAnew()
{
    QMutexLocker const lock(&RunMutex);
    Links = LinkGuard(Folder());
    WarnedLinks.clear();
}

bool StandartApplication::LeadsOut(QString const& p_Path)
{
    QMutexLocker const lock(&RunMutex);
    if (Links.Folder != Folder())
        LookAtLinksAnew();
    auto const link = Links.LeadingOut(p_Path);
    if (!link)
        return false;
    if (!WarnedLinks.contains(p_Path)) {
        WarnedLinks.insert(p_Path);
        qCWarning(LogComparison) << Name << "leaves" << p_Path << "alone: the symbolic link"
                                 << link->Path << "leads out of the game folder, to"
                                 << link->Target;
    }
    return true;
}

bool StandartApplication::LeadsOutByNow(QString const& p_Path)
{
    QMutexLocker const lock(&RunMutex);
    Links = LinkGuard(Folder());
    return LeadsOut(p_Path);
}

bool StandartApplication::MakeOwn(QString const& p_Path)
{
    QMutexLocker const lock(&RunMutex);
    if (Links.Folder != Folder())
        LookAtLinksAnew();
    auto const link = Links.LeadingOut(p_Path);
    if (!link)
        return true;
    // Any other link is one on the way: what it leads to is no place for a file of ours.
    if (link->Path != Folder() + p_Path || !QFile::remove(link->Path))
        return !LeadsOut(p_Path);
    qCWarning(LogComparison) << Name << "replaces the symbolic link" << link->Path
                             << "by a file: it leads out of the game folder, to" << link->Target;
    return true;
}

} // namespace Varnholt::Launcher
