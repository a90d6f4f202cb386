#pragma once

#include "Host/Core/Jobs/DiskPace.hpp"
#include "Host/Core/Module/ModuleView.hpp"
#include "Host/Core/Module/RunGate.hpp"

#include <vector>

namespace Varnholt::Host {

/// How far the module's own comparison of a list of files is. It tells the file at hand only; how
/// much of that it has read, its questions tell. Module thread.
class ComparisonReader {
public:
    ComparisonReader(ModuleView const& p_View, RunGate const& p_Gate)
        : View(p_View)
        , Gate(p_Gate)
    {
    }

    /// Adds file and figures to a snapshot. The bytes are 0 until the files have been measured,
    /// some at each call. \param p_Files of one comparison
    void Tell(RunSnapshot& p_Snapshot, ModuleView::Entries const& p_Files);

private:
    void Measure(ModuleView::Entries const& p_Files, bool p_AreStreamed);
    quint64 SizeOf(ModuleView::Entry const& p_Entry, bool p_IsStreamed) const;

    ModuleView const& View;
    RunGate const& Gate;
    QString Folder;
    QString Locale;
    bool LooksAtAll = false;
    std::vector<quint64> Before; ///< bytes of the files before each, as far as they are measured
    std::size_t Number = 0;      ///< of the file at hand, from 1
    quint64 AskedBefore = 0;     ///< questions when that was begun
    quint64 Done = 0;
    DiskPace Pace;
};

} // namespace Varnholt::Host
