#pragma once

#include "Host/Gateway/Clock.hpp"
#include "Host/Gateway/FetchProblem.hpp"
#include "Host/Gateway/ServerBoard.hpp"
#include "Host/Gateway/TransferLoop.hpp"

#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace Varnholt::Gateway {

struct FileTransfer;

/// Bytes of a file that lie one behind the other in memory, and those that a transfer is bringing
/// behind them.
struct Span {
    static constexpr std::uint64_t c_Open = ~0ULL;
    static constexpr std::size_t c_BlockBytes = 64UL * 1024;

    std::uint64_t Begin = 0;   ///< of what is in memory; what was before has been handed on
    std::uint64_t Arrived = 0; ///< end of what is in memory
    std::uint64_t End = 0;     ///< of what the transfer is to bring; `c_Open`: the end of the file
    /// Full but for the last one, which has room for what is to come: a block is never moved.
    std::deque<std::shared_ptr<std::string>> Blocks;
    std::uint64_t FirstBlock = 0; ///< where the first block begins

    TransferLoop::Id Transfer = 0; ///< 0: none
    std::shared_ptr<FileTransfer> By;
    std::shared_ptr<Server> From;
    TimePoint Started;
    TimePoint FirstByte;
    bool IsStream = false;    ///< its server gives no ranges: there is no telling how much comes
    std::uint64_t ToSkip = 0; ///< bytes that come before those that are wanted

    bool IsUnderWay() const { return Transfer != 0; }
    /// Up to where nothing else needs to be asked for.
    std::uint64_t Covered() const { return IsUnderWay() ? End : Arrived; }
    std::uint64_t Held() const { return Arrived - FirstBlock; }
    /// Bytes that are sure to come.
    std::uint64_t Expected() const { return IsUnderWay() && !IsStream ? End - Arrived : 0; }
    void Append(char const* p_Data, std::size_t p_Bytes);
    /// Forgets what lies before an offset.
    void Release(std::uint64_t p_Offset);
};

/// A file of content: what is known of it and what of it is in memory. Guarded by its user.
class FileContent {
public:
    /// Bytes that are neither in memory nor on their way.
    struct Gap {
        std::uint64_t Begin;
        std::uint64_t End; ///< `Span::c_Open` while the size is not known
    };
    struct Bytes {
        std::shared_ptr<std::string> Block; ///< keeps them alive
        char const* Data = nullptr;
        std::size_t Count = 0;
    };

    explicit FileContent(std::string p_Path)
        : Path(std::move(p_Path))
    {
    }

    std::string const Path;
    bool OfDefaultServer = false; ///< no mirror may give it

    std::optional<std::uint64_t> Size;
    std::shared_ptr<Server> SizeFrom;    ///< who has told it
    bool HasNoSize = false;              ///< its servers do not tell one
    bool IsAsked = false;                ///< for its size
    bool IsDisputed = false;             ///< servers differ in its size: the default one decides
    std::optional<FetchProblem> Refusal; ///< every server has refused it
    TimePoint RefusedAt;
    std::optional<FetchProblem> Problem; ///< of the latest attempt
    std::set<Server const*> RefusedBy;

    std::list<Span> Spans; ///< in their order, without overlaps
    static constexpr std::size_t c_Unplanned = ~std::size_t{0};
    std::size_t PlanIndex = c_Unplanned;
    std::uint64_t Offset = 0; ///< where the plan says that a run goes on
    int Readers = 0;
    bool IsDelivered = false;
    bool IsReadFromStart = false; ///< by a client of this run: all of it came from `Contributors`
    std::uint64_t Counted = 0;    ///< bytes that it was last known to hold
    std::uint64_t CountedExpected = 0;
    std::set<std::shared_ptr<Server>> Contributors;
    std::set<Server const*> Wrong;  ///< those whose bytes were rejected
    std::weak_ptr<Server> OnlyFrom; ///< after bytes of several were rejected together
    bool HasOneSource = false;

    /// Where a fetch has to go on for a reader at p_From; none when all is there or on its way.
    std::optional<Gap> FirstGap(std::uint64_t p_From) const;
    /// Bytes in memory at an offset.
    std::optional<Bytes> At(std::uint64_t p_Offset) const;
    /// Whether the file ends at an offset, as far as is known.
    bool EndsAt(std::uint64_t p_Offset) const { return Size && p_Offset >= *Size; }
    /// Removes spans that are nothing any more.
    void Tidy();
    /// A new one in its place.
    std::list<Span>::iterator Insert(Span p_Span);
    /// Bytes in memory and those that are sure to come.
    std::uint64_t Held() const;
    /// Those that are sure to come.
    std::uint64_t Expected() const;
};

} // namespace Varnholt::Gateway
