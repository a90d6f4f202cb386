#include "GameModules/ManifestComparison.hpp"

#include "GameModules/FileLink.hpp"

#include <QFile>
#include <QHash>
#include <QSet>

#include <deque>
#include <utility>

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

/// The manifest's digest is taken as it stands: in lower case it never matches.
bool IsOf(ApplicationManifestFileEntry const& p_Entry, FileDigest::Digest const& p_Digest)
{
    return !p_Digest.Md5.isEmpty() && p_Digest.Md5 == p_Entry.Md5;
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

/// What is known of an entry before its digest.
struct ManifestComparison::Look {
    enum class Verdict { Good, Barred, Fetch, Hash };

    Verdict Is = Verdict::Good;
    DigestEngine::Ticket File; ///< of `Hash`
};

ManifestComparison::Look ManifestComparison::LookAt(ApplicationManifestFileEntry const& p_Entry,
                                                    DigestEngine& p_Digests) const
{
    if (!p_Entry.IsFor(Locale))
        return {};
    if (SkipFirstBuildOnly && p_Entry.Has(ApplicationManifestFileEntry::FirstBuildOnly))
        return {};
    if (IsBarred(p_Entry.Path))
        return {Look::Verdict::Barred, {}};
    if (!IsThere(p_Entry))
        return {Look::Verdict::Fetch, {}};
    if (p_Entry.Has(ApplicationManifestFileEntry::KeepIfPresent))
        return {};
    return {Look::Verdict::Hash, p_Digests.Add(Folder + p_Entry.Path)};
}

ManifestComparison::Findings ManifestComparison::Examine(Entries const& p_Manifest) const
{
    constexpr std::size_t c_FilesAhead = 128; // enough for every thread, few enough to stop soon
    constexpr std::size_t c_EntriesAhead = 1024;

    Findings found;
    DigestEngine digests;
    std::deque<Look> ahead; // from the entry that is examined on
    for (std::size_t i = 0; i < p_Manifest.size(); ++i) {
        if (!Continue()) {
            found.IsWhole = false;
            break;
        }
        while (i + ahead.size() < p_Manifest.size() && ahead.size() < c_EntriesAhead &&
               digests.Count() < c_FilesAhead)
            ahead.push_back(LookAt(p_Manifest[i + ahead.size()], digests));
        OnEntry(i);
        Look look = std::move(ahead.front());
        ahead.pop_front();
        if (look.Is == Look::Verdict::Hash &&
            !IsOf(p_Manifest[i], digests.Take(look.File, Continue)))
            look.Is = Look::Verdict::Fetch;
        if (look.Is == Look::Verdict::Barred)
            found.IsWhole = false;
        else if (look.Is == Look::Verdict::Fetch)
            found.Files.push_back(p_Manifest[i]);
    }
    return found;
}

Entries ManifestComparison::LeftOver(Entries const& p_Manifest, QStringList const& p_Paths,
                                     Entries const& p_Found) const
{
    if (p_Paths.isEmpty())
        return {};
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
    if (p_Paths.isEmpty())
        return {};
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
