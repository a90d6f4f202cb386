#include "GameModules/LinkGuard.hpp"

#include "GameModules/FileLink.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QFileInfo>

namespace Varnholt::Launcher {

using Helper::Paths::WithSlash;

LinkGuard::LinkGuard(QString const& p_Folder)
    : Folder(p_Folder)
    , Root(QFileInfo(p_Folder).canonicalFilePath())
{
    if (!Root.isEmpty())
        Root = WithSlash(Root);
}

std::optional<LinkGuard::Link> LinkGuard::OnTheWay(QString const& p_Path)
{
    return WayTo(p_Path).Barred;
}

std::optional<LinkGuard::Link> LinkGuard::LeadingOut(QString const& p_Path)
{
    Way way = WayTo(p_Path);
    if (!way.Out)
        Look(p_Path, p_Path.mid(p_Path.lastIndexOf(QLatin1Char('/')) + 1), way);
    return way.Out;
}

LinkGuard::Way const& LinkGuard::WayTo(QString const& p_Path)
{
    int const end = p_Path.lastIndexOf(QLatin1Char('/'));
    QString const folder = end < 0 ? QString() : p_Path.left(end);
    auto const known = Ways.constFind(folder);
    if (known != Ways.constEnd())
        return *known;
    Way way;
    int begin = 0;
    while (begin >= 0 && begin < folder.size() && !way.Barred) {
        int const slash = folder.indexOf(QLatin1Char('/'), begin);
        QString const path = folder.left(slash);
        Look(path, path.mid(begin), way);
        begin = slash < 0 ? -1 : slash + 1;
    }
    return *Ways.insert(folder, way);
}

/// Looks at the last step of a path; those before it have been looked at.
void LinkGuard::Look(QString const& p_Path, QString const& p_Step, Way& p_Way) const
{
    if (Root.isEmpty() || p_Step.isEmpty() || p_Step == QLatin1String("."))
        return;
    QFileInfo const entry(Folder + p_Path);
    bool const isLink = entry.isSymbolicLink();
    // Behind a link ".." leads to the parent of the link's target, which may be outside.
    if (!isLink && p_Step != QLatin1String(".."))
        return;
    // canonicalFilePath() gives a link that is part of a circle back as it is.
    QString const canonical = entry.exists() ? entry.canonicalFilePath() : QString();
    bool const staysInside = canonical.isEmpty() ? !isLink : WithSlash(canonical).startsWith(Root);
    if (staysInside)
        return;
    Link const link{Folder + p_Path, canonical.isEmpty() ? entry.symLinkTarget() : canonical};
    if (!p_Way.Out)
        p_Way.Out = link;
    if (!isLink || !entry.isDir() || !FileLink::IsPlayers(Folder + p_Path))
        p_Way.Barred = link;
}

} // namespace Varnholt::Launcher
