#include "Host/Core/Jobs/Inspection.hpp"

#include "GameModules/FileDigest.hpp"
#include "GameModules/LinkGuard.hpp"
#include "GameModules/ManifestComparison.hpp"
#include "GameModules/PendingList.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

Inspection::Inspection(RunContext const& p_Context, QString p_Folder, bool p_EveryFile)
    : Manifest(p_Context.Module.Manifest)
    , Folder(std::move(p_Folder))
    , Locale(p_Context.Module.GetAppLocale())
    , EveryFile(p_EveryFile)
    , Count(static_cast<quint32>(Manifest.Files.size() +
                                 (p_EveryFile ? Manifest.StreamedFiles.size() : 0)))
{
}

std::shared_ptr<Inspection> Inspection::Begin(RunContext const& p_Context, QString const& p_Folder,
                                              bool p_EveryFile)
{
    std::shared_ptr<Inspection> const work(new Inspection(p_Context, p_Folder, p_EveryFile));
    p_Context.Module.EnqueueAsync([work] { work->Run(); });
    return {work.get(), [work](Inspection* p_Work) { p_Work->Stopped = true; }};
}

RunSnapshot Inspection::Look(RunPhase p_Phase)
{
    RunSnapshot snapshot;
    snapshot.Phase = p_Phase;
    snapshot.FileCount = Count;
    snapshot.FileNumber = std::min<quint32>(Number, Count);
    if (snapshot.FileNumber > 0)
        snapshot.File = FileAt(snapshot.FileNumber);
    snapshot.BytesTotal = Total;
    snapshot.BytesDone = std::min<quint64>(Done, snapshot.BytesTotal);
    Pace.Tell(snapshot);
    return snapshot;
}

RunTotals Inspection::Totals() const
{
    RunTotals totals;
    totals.Files = ComparedFiles;
    totals.Bytes = ComparedBytes;
    return totals;
}

void Inspection::Run()
{
    Launcher::ManifestComparison comparison;
    comparison.Folder = Folder;
    comparison.Locale = Locale;
    comparison.SkipFirstBuildOnly = !EveryFile;
    Launcher::LinkGuard links(Folder);
    comparison.IsBarred = [&](QString const& p_Path) { return links.OnTheWay(p_Path).has_value(); };
    comparison.Continue = [this] { return GoOn(); };
    comparison.OnEntry = [this](std::size_t) { Enter(); };
    Measure();

    Entries const examined = comparison.Examine(Manifest.Files).Files;
    Add(examined, FileFinding::Cause::Different);
    if (EveryFile) {
        Add(comparison.Examine(Manifest.StreamedFiles).Files, FileFinding::Cause::Different);
        Leave();
    } else {
        Leave();
        namespace PendingList = Launcher::PendingList;
        auto const read = [&](QString const& p_Name) {
            return PendingList::Read(Folder + p_Name, comparison.Continue).Paths;
        };
        constexpr auto c_Pending = FileFinding::Cause::Pending;
        Add(comparison.LeftOver(Manifest.Files, read(PendingList::c_Base), examined), c_Pending);
        Add(comparison.Named(Manifest.StreamedFiles, read(PendingList::c_Streamed)), c_Pending);
        Add(MissingFiles(Manifest, Folder, Locale), c_Pending);
    }
    Done = Before.back();
    Finished = true;
}

void Inspection::Measure()
{
    Before.assign(1, 0);
    for (quint32 number = 1; number <= Count && !Stopped; ++number)
        Before.push_back(Before.back() +
                         static_cast<quint64>(QFileInfo(Folder + FileAt(number)).size()));
    Total = Before.back();
}

QString Inspection::FileAt(quint32 p_Number) const
{
    std::size_t const index = p_Number - 1;
    std::size_t const base = Manifest.Files.size();
    return index < base ? Manifest.Files[index].Path : Manifest.StreamedFiles[index - base].Path;
}

void Inspection::Enter()
{
    --Asked; // before the file that comes
    Leave();
    if (Number + 1U < Before.size())
        Done = Before[Number];
    ++Number;
}

/// Counts the file that is left, if it was read: the comparison has asked for a block then.
void Inspection::Leave()
{
    if (!Stopped && Asked > 0 && Number > 0 && Number < Before.size()) {
        ++ComparedFiles;
        ComparedBytes += Before[Number] - Before[Number - 1];
    }
    Asked = 0;
}

/// Asked before each file, and before each block of one.
bool Inspection::GoOn()
{
    ++Asked;
    if (Number < Before.size()) // never more than the file holds
        Done = std::min(Done + Launcher::FileDigest::c_BlockBytes, Before[Number]);
    return !Stopped;
}

void Inspection::Add(Entries const& p_Entries, FileFinding::Cause p_WhenThere)
{
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Entries) {
        if (Told.contains(entry.Path))
            continue;
        Told.insert(entry.Path);
        Found.emplace_back(Folder, entry, p_WhenThere);
    }
}

} // namespace Varnholt::Host
