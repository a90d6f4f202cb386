#include "Host/Cli/ProgressView.hpp"

#include "Host/Cli/Console.hpp"
#include "Host/Cli/ProgressText.hpp"

namespace Varnholt::Host {

ProgressView::ProgressView(Console& p_Console)
    : Output(p_Console)
{
}

void ProgressView::Show(RunSnapshot const& p_Snapshot)
{
    constexpr qint64 c_LineMilliseconds = 5'000;

    if (Output.IsQuiet())
        return;
    bool const isNew = p_Snapshot.Phase != Phase;
    Phase = p_Snapshot.Phase;
    // How it ended is told in full by the result.
    if (Phase == RunPhase::Finished || Phase == RunPhase::Failed)
        return Clear();
    if (Output.IsTerminal())
        return Output.ShowStatus(
            ProgressText::Bar(p_Snapshot, Output.Width() - 1, Output.IsUnicode()));
    if (!isNew && SinceLine.isValid() && !SinceLine.hasExpired(c_LineMilliseconds))
        return;
    SinceLine.start();
    Output.Note(ProgressText::Line(p_Snapshot));
}

void ProgressView::Clear()
{
    Output.ShowStatus({});
}

} // namespace Varnholt::Host
