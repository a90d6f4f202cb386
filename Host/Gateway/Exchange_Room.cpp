#include "Host/Gateway/Exchange.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

void Exchange::Recount(FileContent& p_File)
{
    std::uint64_t const held = p_File.Held();
    std::uint64_t const expected = p_File.Expected();
    Held += held - p_File.Counted;
    Expected += expected - p_File.CountedExpected;
    p_File.Counted = held;
    p_File.CountedExpected = expected;
}

/// Disowns a transfer; what it has brought stays.
void Exchange::CancelTransfer(Span& p_Span)
{
    if (!p_Span.IsUnderWay())
        return;
    p_Span.By->Run = 0;
    UnderWay.erase(p_Span.Transfer);
    ToCancel.push_back(p_Span.Transfer);
    p_Span.Transfer = 0;
    p_Span.By.reset();
    p_Span.End = p_Span.Arrived;
    --p_Span.From->Transfers;
    --Transfers;
}

/// Forgets all bytes of a file, and those on their way.
void Exchange::Drop(FileContent& p_File)
{
    for (Span& span : p_File.Spans)
        CancelTransfer(span);
    p_File.Spans.clear();
    Recount(p_File);
}

/// Drops what was fetched ahead, the farthest first, for something that is waited for.
void Exchange::MakeRoom(std::uint64_t p_Bytes)
{
    for (std::size_t i = Planned.size(); i-- > 0 && !HasRoom(p_Bytes);) {
        FileContent& file = *Planned[i];
        if (file.Readers > 0 || file.Spans.empty())
            continue;
        Drop(file);
        PlanAhead = std::min(PlanAhead, std::max(PlanNext, i));
    }
    for (auto const& row : Files) {
        if (HasRoom(p_Bytes))
            return;
        if (row.second->Readers == 0)
            Drop(*row.second);
    }
}

/// Called when connections are free and there is nothing to begin: a server that would take much
/// longer for the rest of its piece than a free one gives it up.
void Exchange::RelieveSlowOnes(TimePoint p_Now)
{
    constexpr double c_Least = 1.0; // seconds, before a judgement
    constexpr double c_TooLong = 2; // times
    constexpr double c_LeastRate = 1024;

    if (Transfers >= Options.Connections)
        return;
    for (Reader const* const reader : Readers)
        for (Span& span : reader->File->Spans) {
            double const elapsed = SecondsBetween(span.Started, p_Now);
            if (reader->Run != Run || !span.IsUnderWay() || span.IsStream || elapsed < c_Least ||
                Limit.IsSet())
                continue;
            auto const allowed = Allowed(*reader->File);
            auto const other = Board.ForContent(
                [&](Server const& p_Server) {
                    return allowed(p_Server) && &p_Server != span.From.get() && p_Server.Speed > 0;
                },
                p_Now);
            double const rest = static_cast<double>(span.End - span.Arrived);
            double const rate = static_cast<double>(span.Arrived - span.By->Begin) / elapsed;
            if (!other || rest / other->Speed * c_TooLong + c_Least > rest / std::max(rate, 1.0))
                continue;
            if (rate < c_LeastRate)
                Board.NoteFailure(*span.From, 0, p_Now);
            // Its speed is lowered to what it has shown here, so that it gets smaller pieces.
            span.From->Speed = std::max(std::min(span.From->Speed, rate), 1.0);
            FileContent::Gap const gap{span.Arrived, span.End};
            CancelTransfer(span);
            StartTransfer(reader->File, gap, other, p_Now);
            reader->File->Tidy();
            Recount(*reader->File);
            return;
        }
}

} // namespace Varnholt::Gateway
