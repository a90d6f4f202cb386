#include "Publisher/Publication/BuildDifference.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Publisher/Failure.hpp"

#include <map>

namespace Varnholt::Publisher {

namespace {

using Change = FileDifference::Change;
using FilesByPath = std::map<QString, PublishedFile>;

void CheckLocale(PublishedBuild const& p_Build, QString const& p_Locale)
{
    if (!p_Locale.isEmpty() && p_Build.Locales.count(p_Locale) == 0) {
        throw Failure(QStringLiteral("--locale \"%1\": build %2 does not offer this language")
                          .arg(p_Locale, p_Build.Id),
                      Failure::c_Usage);
    }
}

FilesByPath FilesOf(PublishedBuild const* p_Build, QString const& p_Locale)
{
    FilesByPath files;
    if (!p_Build)
        return files;
    for (PublishedFile const& file : p_Build->Files) {
        if (file.IsFor(p_Locale))
            files.emplace(file.Path, file);
    }
    return files;
}

bool IsTreatedAlike(PublishedFile const& p_One, PublishedFile const& p_Two)
{
    return p_One.Flags == p_Two.Flags && p_One.Locale == p_Two.Locale &&
           p_One.Streamed == p_Two.Streamed;
}

/// Of a file that the newer build has.
FileDifference DifferenceOf(FilesByPath const& p_Old, PublishedFile const& p_File)
{
    FileDifference found{Change::New, p_File, {}, 0, false};
    auto const old = p_Old.find(p_File.Path);
    if (old == p_Old.end())
        return found;
    if (!IsTreatedAlike(old->second, p_File))
        found.TreatedBefore = old->second;
    if (old->second.Md5 != p_File.Md5)
        found.Kind = Change::Changed;
    else
        found.Kind = found.TreatedBefore ? Change::Altered : Change::Same;
    return found;
}

bool IsFetched(Change p_Change, PublishedFile const& p_File)
{
    bool const isKept = (p_File.Flags & Launcher::ApplicationManifestFileEntry::KeepIfPresent) != 0;
    return p_Change == Change::New || (p_Change == Change::Changed && !isKept);
}

} // namespace

BuildDifference::BuildDifference(BuildCatalog const& p_Tree, PublishedBuild const* p_Old,
                                 PublishedBuild const& p_New, QString const& p_Locale)
{
    CheckLocale(p_New, p_Locale);
    FilesByPath const old = FilesOf(p_Old, p_Locale);
    FilesByPath files = FilesOf(&p_New, p_Locale);
    FilesByPath const current = files;
    files.insert(old.begin(), old.end());
    for (auto const& [path, file] : files) {
        FileDifference found{Change::Removed, file, {}, 0, false};
        if (current.count(path) > 0)
            found = DifferenceOf(old, file);
        found.Bytes = p_Tree.SizeOf(file);
        found.IsFetched = IsFetched(found.Kind, file);
        Found.push_back(found);
    }
}

FileTotal BuildDifference::Total(Change p_Kind) const
{
    FileTotal total;
    for (FileDifference const& file : Found) {
        if (file.Kind == p_Kind)
            total.Add(file.Bytes);
    }
    return total;
}

FileTotal BuildDifference::Fetched(bool p_Streamed) const
{
    FileTotal total;
    for (FileDifference const& file : Found) {
        if (file.IsFetched && file.File.Streamed == p_Streamed)
            total.Add(file.Bytes);
    }
    return total;
}

} // namespace Varnholt::Publisher
