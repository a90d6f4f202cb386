#include "GameModules/LinkGuard.hpp"

#include <QFileInfo>

namespace Varnholt::Launcher {

namespace {

QString WithSlash(QString const& p_Path)
{
    return p_Path.endsWith(QLatin1Char('/')) ? p_Path : p_Path + QLatin1Char('/');
}

} // namespace

LinkGuard::LinkGuard(QString const& p_Folder)
    : Folder(p_Folder)
    , Root(QFileInfo(p_Folder).canonicalFilePath())
{
    if (!Root.isEmpty())
        Root = WithSlash(Root);
}

std::optional<LinkGuard::Link> LinkGuard::LeadingOut(QString const& p_Path)
{
    if (Root.isEmpty()) // where no folder is, there is no link
        return std::nullopt;
    int const slash = p_Path.lastIndexOf(QLatin1Char('/'));
    if (slash >= 0)
        if (auto link = LookedUp(p_Path.left(slash)))
            return link;
    return Look(p_Path);
}

std::optional<LinkGuard::Link> LinkGuard::LookedUp(QString const& p_Path)
{
    auto const known = Folders.constFind(p_Path);
    if (known != Folders.constEnd())
        return *known;
    return *Folders.insert(p_Path, LeadingOut(p_Path));
}

/// At the last step of a path alone.
std::optional<LinkGuard::Link> LinkGuard::Look(QString const& p_Path) const
{
    QString const step = p_Path.mid(p_Path.lastIndexOf(QLatin1Char('/')) + 1);
    if (step.isEmpty() || step == QLatin1String("."))
        return std::nullopt;
    QFileInfo const entry(Folder + p_Path);
    bool const isLink = entry.isSymLink();
    // What is above a folder that a link leads to is not what the path says.
    if (!isLink && step != QLatin1String(".."))
        return std::nullopt;
    // Of a circle the canonical path would be the link itself.
    QString const canonical = entry.exists() ? entry.canonicalFilePath() : QString();
    bool const staysInside = canonical.isEmpty() ? !isLink : WithSlash(canonical).startsWith(Root);
    if (staysInside)
        return std::nullopt;
    return Link{Folder + p_Path, canonical.isEmpty() ? entry.symLinkTarget() : canonical};
}

} // namespace Varnholt::Launcher
