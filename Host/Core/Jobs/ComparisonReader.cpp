#include "Host/Core/Jobs/ComparisonReader.hpp"

#include "GameModules/FileDigest.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

void ComparisonReader::Tell(RunSnapshot& p_Snapshot, ModuleView::Entries const& p_Files)
{
    std::size_t const number = std::min(View.ComparedFile(), p_Files.size());
    p_Snapshot.FileNumber = static_cast<quint32>(number);
    p_Snapshot.FileCount = static_cast<quint32>(p_Files.size());
    if (number == 0)
        return;
    p_Snapshot.File = p_Files[number - 1].Path;
    quint64 const asked = Gate.Questions();
    if (number != Number)
        AskedBefore = asked;
    Number = number;
    Measure(p_Files, p_Snapshot.Phase == RunPhase::ComparingStreamed);
    if (Before.size() <= p_Files.size())
        return;
    quint64 const done =
        Before[number - 1] + (asked - AskedBefore) * Launcher::FileDigest::c_BlockBytes;
    Done = std::max(Done, std::min(done, Before[number]));
    p_Snapshot.BytesDone = Done;
    p_Snapshot.BytesTotal = Before.back();
    Pace.Tell(p_Snapshot);
}

void ComparisonReader::Measure(ModuleView::Entries const& p_Files, bool p_AreStreamed)
{
    constexpr std::size_t c_MostAtOnce = 2'000;

    if (Before.empty()) {
        Before.push_back(0);
        Folder = View.Folder();
        Locale = View.Locale();
        LooksAtAll = View.IsFirstBuild();
    }
    for (std::size_t i = 0; i < c_MostAtOnce && Before.size() <= p_Files.size(); ++i)
        Before.push_back(Before.back() + SizeOf(p_Files[Before.size() - 1], p_AreStreamed));
}

/// 0 of a file that the module does not read.
quint64 ComparisonReader::SizeOf(ModuleView::Entry const& p_Entry, bool p_IsStreamed) const
{
    bool const isTrusted =
        !LooksAtAll && !p_IsStreamed && p_Entry.Has(ModuleView::Entry::FirstBuildOnly);
    if (!p_Entry.IsFor(Locale) || isTrusted || p_Entry.Has(ModuleView::Entry::KeepIfPresent))
        return 0;
    return static_cast<quint64>(QFileInfo(Folder + p_Entry.Path).size());
}

} // namespace Varnholt::Host
