#pragma once

#include "Host/Gateway/Clock.hpp"
#include "Host/Gateway/FetchProblem.hpp"
#include "Host/Gateway/RateMeter.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Varnholt::Gateway {

/// A server of content and what is known of it.
struct Server {
    std::string Address; ///< ends in "/"
    std::string Name;    ///< host and port
    bool IsDefault = false;

    int Transfers = 0; ///< of content, under way
    int Queries = 0;   ///< for sizes, under way
    double Speed = 0;  ///< bytes per second that one transfer brings; 0: not known
    bool IgnoresRanges = false;
    bool RefusesHead = false;

    int Failures = 0;    ///< in a row
    int Refusals = 0;    ///< of files, in a row
    TimePoint NotBefore; ///< not asked until then
    int WrongFiles = 0;
    TimePoint WrongUntil; ///< the others come first until then

    std::uint64_t Received = 0;
    RateMeter Meter;

    bool IsWrong(TimePoint p_Now) const { return WrongFiles > 0 && p_Now < WrongUntil; }
    bool IsAskable(TimePoint p_Now) const { return NotBefore <= p_Now; }
    /// Has failed and is tried again, with one transfer.
    bool IsOnTrial() const { return Failures > 0; }
};

/// The servers of a run: which there are, and which comes first. Guarded by its user.
class ServerBoard {
public:
    static constexpr int c_TransfersPerServer = 2;
    static constexpr int c_QueriesPerServer = 8;

    /// Whether a server may be asked for a certain file.
    using Filter = std::function<bool(Server const&)>;

    ServerBoard(std::string const& p_ContentServer, Milliseconds p_RetryPause);

    /// Those that were known before keep what is known of them.
    void SetMirrors(std::vector<std::string> const& p_Addresses);
    Server& Default() { return *Servers.front(); }
    std::vector<std::shared_ptr<Server>> const& All() const { return Servers; }
    /// Forgets mirrors, failures and figures, not speeds.
    void BeginRun();

    /// Who shall be asked for content; null when nobody can be at the moment.
    std::shared_ptr<Server> ForContent(Filter const& p_May, TimePoint p_Now) const;
    /// Who shall be asked for a size.
    std::shared_ptr<Server> ForSize(Filter const& p_May, TimePoint p_Now) const;
    /// When the next of those that are left alone for a while may be asked again; the end of all
    /// time when there is none.
    TimePoint NextTrial(TimePoint p_Now) const;

    void NoteFailure(Server& p_Server, int p_RetryAfterSeconds, TimePoint p_Now) const;
    static void NoteWrongFile(Server& p_Server, TimePoint p_Now);
    /// \param p_Seconds that one transfer has needed for the bytes
    static void NoteSpeed(Server& p_Server, std::uint64_t p_Bytes, double p_Seconds);

private:
    using IsFree = bool (*)(Server const&);
    std::shared_ptr<Server> Choose(Filter const& p_May, IsFree p_IsFree, TimePoint p_Now) const;

    std::vector<std::shared_ptr<Server>> Servers;         ///< the default one first
    std::map<std::string, std::shared_ptr<Server>> Known; ///< by address
    Milliseconds RetryPause;
};

} // namespace Varnholt::Gateway
