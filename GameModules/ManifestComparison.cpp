#include "GameModules/ManifestComparison.hpp"

#include "GameModules/FileDigest.hpp"
#include "GameModules/FileLink.hpp"

#include <QFile>
#include <QHash>
#include <QSet>

namespace Varnholt::Launcher {

namespace {

using Entries = ManifestComparison::Entries;

/// Indexes by path, in manifest order: pending lists can be as long as the manifest.
QHash<QString, std::vector<std::size_t>> IndexByPath(Entries const& p_Manifest)
{
    QHash<QString, std::vector<std::size_t>> index;
    index.reserve(static_cast<int>(p_Manifest.size()));
    for (std::size_t i = 0; i < p_Manifest.size(); ++i)
        index[p_Manifest[i].Path].push_back(i);
    return index;
}

} // namespace

bool ManifestComparison::IsThere(ApplicationManifestFileEntry const& p_Entry) const
{
    QString const path = Folder + p_Entry.Path;
    return QFile::exists(path) && FileLink::At(path) != FileLink::Kind::Strange;
}

bool ManifestComparison::IsKept(ApplicationManifestFileEntry const& p_Entry) const
{
    return p_Entry.Has(ApplicationManifestFileEntry::KeepIfPresent) && IsThere(p_Entry);
}

bool ManifestComparison::MustBeFetched(ApplicationManifestFileEntry const& p_Entry) const
{
    if (!IsThere(p_Entry))
        return true;
    if (p_Entry.Has(ApplicationManifestFileEntry::KeepIfPresent))
        return false;
    auto const digest = FileDigest::Of(Folder + p_Entry.Path, Continue);
    // The manifest's digest is taken as it stands: in lower case it never matches.
    return !digest.Opened || digest.Md5 != p_Entry.Md5;
}

ManifestComparison::Findings ManifestComparison::Examine(Entries const& p_Manifest) const
{
    Findings found;
    for (std::size_t i = 0; i < p_Manifest.size(); ++i) {
        if (!Continue()) {
            found.IsWhole = false;
            break;
        }
        ApplicationManifestFileEntry const& entry = p_Manifest[i];
        OnEntry(i);
        if (!entry.Locale.isEmpty() && entry.Locale != Locale)
            continue;
        if (SkipFirstBuildOnly && entry.Has(ApplicationManifestFileEntry::FirstBuildOnly))
            continue;
        if (IsBarred(entry.Path))
            found.IsWhole = false;
        else if (MustBeFetched(entry))
            found.Files.push_back(entry);
    }
    return found;
}

Entries ManifestComparison::LeftOver(Entries const& p_Manifest, QStringList const& p_Paths,
                                     Entries const& p_Found) const
{
    auto const index = IndexByPath(p_Manifest);
    QSet<QString> listed;
    for (ApplicationManifestFileEntry const& entry : p_Found)
        listed.insert(entry.Path);

    Entries leftOver;
    QSet<QString> asked;
    for (QString const& path : p_Paths) {
        if (listed.contains(path) || asked.contains(path) || IsBarred(path))
            continue;
        asked.insert(path);
        for (std::size_t const i : index.value(path)) {
            if (!Continue())
                return leftOver;
            if (IsKept(p_Manifest[i]))
                continue;
            leftOver.push_back(p_Manifest[i]);
            listed.insert(path);
        }
    }
    return leftOver;
}

Entries ManifestComparison::Named(Entries const& p_Manifest, QStringList const& p_Paths) const
{
    auto const index = IndexByPath(p_Manifest);
    Entries named;
    for (QString const& path : p_Paths) {
        auto const found = index.constFind(path);
        if (found != index.constEnd() && !IsBarred(path))
            named.push_back(p_Manifest[found->front()]);
    }
    return named;
}

} // namespace Varnholt::Launcher
