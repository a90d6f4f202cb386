// A manifest from outside: whatever it says, each path that is kept stays in the game folder.

#include "GameModules/ManifestPaths.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"
#include "Tests/Fuzzing/FuzzSupport.hpp"

#include <algorithm>

namespace {

using namespace Varnholt;
using Fuzzing::Demand;
using Launcher::ApplicationManifest;
using Entries = std::vector<Launcher::ApplicationManifestFileEntry>;

/// Walks a path step by step as a file system does that knows both separators. \return how many
/// folders deep it ends, -1 when it has left the folder where it began
int DepthOf(QByteArray p_Path)
{
    int depth = 0;
    p_Path.replace('\\', '/');
    for (QByteArray const& step : p_Path.split('/')) {
        if (step == "..")
            --depth;
        else if (!step.isEmpty() && step != ".")
            ++depth;
        if (depth < 0)
            return -1;
    }
    return depth;
}

bool StaysInside(QString const& p_Path)
{
    QByteArray const name = QFile::encodeName(p_Path);
    bool const hasRoot =
        name.startsWith('/') || name.startsWith('\\') ||
        (p_Path.size() > 1 && p_Path[1] == QLatin1Char(':') && p_Path[0].isLetter());
    // Half a character is written as a question mark.
    bool const isWhole = p_Path.toUtf8().count('?') == p_Path.count('?');
    return isWhole && !name.contains('\0') && !hasRoot && DepthOf(name) > 0;
}

void DemandSame(Entries const& p_Some, Entries const& p_Others)
{
    Demand(p_Some.size() == p_Others.size(), "both lists are of one length");
    for (std::size_t i = 0; i < p_Some.size(); ++i)
        Demand(p_Some[i].Path == p_Others[i].Path && p_Some[i].Location == p_Others[i].Location &&
                   p_Some[i].Md5 == p_Others[i].Md5 && p_Some[i].Flags == p_Others[i].Flags &&
                   p_Some[i].Locale == p_Others[i].Locale,
               "the entries are the same, in the same order");
}

void ExamineLocales(ApplicationManifest const& p_Manifest)
{
    for (auto const& row : p_Manifest.Locales)
        Demand(row.first == row.second.Tag, "a language stands under its tag");
    for (Entries const& entries : {p_Manifest.Files, p_Manifest.StreamedFiles})
        for (auto const& entry : entries)
            Demand(entry.Locale.isEmpty() || p_Manifest.Locales.count(entry.Locale) == 1,
                   "an entry is of a declared language");
}

/// Qt cleans a byte order mark off a path's beginning: a name of nothing else may be taken for
/// none.
bool MayBeDropped(QString const& p_Path)
{
    return p_Path.contains(QChar(QChar::ByteOrderMark)) &&
           !Launcher::ManifestPaths::IsInsideFolder(p_Path);
}

bool IsTooLong(QString const& p_Path)
{
    int longest = 0;
    for (QString const& name : p_Path.split(QLatin1Char('/')))
        longest = std::max(longest, name.toUtf8().size());
    return longest > 255 || p_Path.toUtf8().size() > 1023;
}

Entries Kept(Entries const& p_Entries)
{
    Entries kept;
    for (auto const& entry : p_Entries)
        if (StaysInside(entry.Path) && !MayBeDropped(entry.Path) && !IsTooLong(entry.Path))
            kept.push_back(entry);
    return kept;
}

void ExaminePaths(ApplicationManifest p_Manifest)
{
    Entries const files = Kept(p_Manifest.Files);
    Entries const streamed = Kept(p_Manifest.StreamedFiles);
    Launcher::ManifestPaths::DropUnsafeEntries(p_Manifest);
    DemandSame(p_Manifest.Files, files);
    DemandSame(p_Manifest.StreamedFiles, streamed);
    for (Entries const& entries : {files, streamed})
        for (auto const& entry : entries)
            Demand(StaysInside(entry.Path + QLatin1String(".part")),
                   "what is fetched stays inside before it is placed, too");
}

/// The same with escapes in the keys of the rows, which have them read another way.
QByteArray WithEscapes(QByteArray p_Document)
{
    return p_Document.replace("\"path\"", R"("p\u0061th")")
        .replace("\"md5\"", R"("m\u00645")")
        .replace("\"flags\"", R"("fl\u0061gs")")
        .replace("\"location\"", R"("loc\u0061tion")")
        .replace("\"locale\"", R"("loc\u0061le")");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* p_Data, std::size_t p_Size)
{
    static int const prepared = Fuzzing::Prepare();
    QByteArray const input = Fuzzing::Input(p_Data, p_Size);

    bool success = false;
    ApplicationManifest const manifest = Launcher::ParseApplicationManifest(input, success, false);
    if (!success) {
        Demand(manifest.Files.empty() && manifest.StreamedFiles.empty() &&
                   manifest.Locales.empty() && manifest.BuildId.isEmpty() &&
                   manifest.BuildStr.isEmpty() && manifest.BuildNumber == 0,
               "what cannot be read is an empty manifest");
        return prepared;
    }
    ExamineLocales(manifest);
    ExaminePaths(manifest);

    bool again = false;
    ApplicationManifest const second =
        Launcher::ParseApplicationManifest(WithEscapes(input), again, false);
    Demand(again, "it can be read in another spelling");
    DemandSame(manifest.Files, second.Files);
    DemandSame(manifest.StreamedFiles, second.StreamedFiles);
    return prepared;
}
