#include "Host/Gateway/FileContent.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

void Span::Append(char const* p_Data, std::size_t p_Bytes)
{
    while (p_Bytes > 0) {
        if (Blocks.empty() || Blocks.back()->size() == Blocks.back()->capacity()) {
            auto block = std::make_shared<std::string>();
            std::uint64_t const left = End == c_Open ? c_BlockBytes : End - Arrived;
            block->reserve(static_cast<std::size_t>(std::min<std::uint64_t>(left, c_BlockBytes)));
            Blocks.push_back(std::move(block));
        }
        std::string& block = *Blocks.back();
        std::size_t const count = std::min(p_Bytes, block.capacity() - block.size());
        block.append(p_Data, count);
        p_Data += count;
        p_Bytes -= count;
        Arrived += count;
    }
}

void Span::Release(std::uint64_t p_Offset)
{
    Begin = std::min(std::max(Begin, p_Offset), Arrived);
    while (!Blocks.empty() && FirstBlock + Blocks.front()->size() <= Begin) {
        // The one that is being filled stays where it is.
        if (Blocks.size() == 1 && IsUnderWay() &&
            Blocks.front()->size() < Blocks.front()->capacity())
            return;
        FirstBlock += Blocks.front()->size();
        Blocks.pop_front();
    }
}

std::optional<FileContent::Gap> FileContent::FirstGap(std::uint64_t p_From) const
{
    std::uint64_t at = p_From;
    for (Span const& span : Spans) {
        if (span.Begin > at)
            return Gap{at, span.Begin};
        at = std::max(at, span.Covered());
    }
    if (at == Span::c_Open || (Size && at >= *Size))
        return std::nullopt;
    return Gap{at, Size.value_or(Span::c_Open)};
}

std::optional<FileContent::Bytes> FileContent::At(std::uint64_t p_Offset) const
{
    for (Span const& span : Spans) {
        if (p_Offset < span.Begin || p_Offset >= span.Arrived)
            continue;
        std::uint64_t begin = span.FirstBlock;
        for (auto const& block : span.Blocks) {
            if (p_Offset < begin + block->size()) {
                auto const skipped = static_cast<std::size_t>(p_Offset - begin);
                return Bytes{block, block->data() + skipped, block->size() - skipped};
            }
            begin += block->size();
        }
    }
    return std::nullopt;
}

void FileContent::Tidy()
{
    Spans.remove_if(
        [](Span const& p_Span) { return !p_Span.IsUnderWay() && p_Span.Arrived == p_Span.Begin; });
}

std::list<Span>::iterator FileContent::Insert(Span p_Span)
{
    auto const next = std::find_if(Spans.begin(), Spans.end(), [&](Span const& p_Other) {
        return p_Other.Begin > p_Span.Begin;
    });
    return Spans.insert(next, std::move(p_Span));
}

std::uint64_t FileContent::Held() const
{
    std::uint64_t held = Expected();
    for (Span const& span : Spans)
        held += span.Held();
    return held;
}

std::uint64_t FileContent::Expected() const
{
    std::uint64_t expected = 0;
    for (Span const& span : Spans)
        expected += span.Expected();
    return expected;
}

} // namespace Varnholt::Gateway
