#pragma once

#include "Host/Gateway/DocumentJudge.hpp"
#include "Host/Gateway/FetchProblem.hpp"
#include "Host/Gateway/GatewayOptions.hpp"
#include "Host/Gateway/GatewaySnapshot.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Varnholt::Gateway {

/// A file that a run is going to ask for.
struct PlannedFile {
    std::string Path;             ///< as it is asked for: below the base address, percent-encoded
    std::uint64_t Offset = 0;     ///< where the run will go on; what lies before is there
    bool OfDefaultServer = false; ///< no mirror may give it
};

/// One question to one server, past everything that the door does for files: no limit of the rate,
/// no second try, and the end of a run does not end it.
struct Question {
    std::string Server;                            ///< base address, ends in "/"
    std::string Path;                              ///< below it, percent-encoded
    std::string Range;                             ///< "0-0"; empty: the whole
    std::uint64_t MostBytes = 64ULL * 1024 * 1024; ///< of the answer; more is a failure
};

struct Reply {
    std::optional<FetchProblem> Problem;
    int HttpStatus = 0; ///< 0 when there was no answer
    std::string Body;
    std::chrono::milliseconds Took{0};
};

/// The one door of a host to the network: an HTTP server on loopback that is a module's content
/// server and its only mirror. Behind it are the real ones, with several connections, chunks,
/// failover, waiting, TLS, proxies and a limit of the rate.
///
/// Holds at most 24 MiB of content, and with its libraries takes less than 64 MiB.
///
/// Lives on no thread: every operation may be called on any, and none waits for the network.
///
/// 1. Create it, give `BaseUrl()` to the module as its content server
///    (VARNHOLT_CONTENT_BASE_URL), and let the module use no proxy for it.
/// 2. `BeginRun` before each run.
/// 3. `Plan` as soon as the module has its list of files, and whenever it has another one.
/// 4. Look at `Snapshot()` now and then. Once it has given up, the module gets no more bytes.
/// 5. `Reject` each file that was not what its digest announces.
/// 6. Destroy it after the module, whose connections it waits for.
class Gateway {
public:
    using Documents = std::map<std::string, std::string>; ///< by path below the base address
    enum class Source {
        Server,
        ServerOrCopies, ///< a server that does not answer soon is replaced by the copies
        Copies,         ///< nobody is asked
    };

    static std::unique_ptr<Gateway> Create(GatewayOptions const& p_Options);
    /// Ends every transfer; the port is free again afterwards.
    virtual ~Gateway() = default;
    Gateway(Gateway const&) = delete;
    Gateway& operator=(Gateway const&) = delete;

    /// "http://127.0.0.1:4711/6f1c…/"; empty when the system lets nobody listen.
    virtual std::string BaseUrl() const = 0;

    /// Forgets what the run before has learned of failures, sizes and plans, and what it held; the
    /// speeds of servers are kept. \param p_Copies the documents of an earlier run
    /// \param p_Trust judges every document before anybody gets a byte of it, of copies too; what
    /// it has let through once stays the same for the run, and what it has not ends the run: the
    /// door has given up then. Null: every document is believed
    virtual void BeginRun(Source p_Source, Documents p_Copies = {},
                          std::shared_ptr<DocumentJudge> p_Trust = nullptr) = 0;
    /// Ends what is under way; whoever still asks gets nothing.
    virtual void EndRun() = 0;
    /// Fetches a document though no client has asked for it, for `Fetched`.
    virtual void Want(std::string const& p_Path) = 0;
    /// The documents that servers gave in this run: version file, manifest, host list, and with a
    /// judge their signatures.
    virtual Documents Fetched() const = 0;

    /// The files in the order in which they will be asked for. Their sizes are asked for at once,
    /// their content is fetched ahead of the module, as far as memory allows. \param p_SizesFirst
    /// the module asks for sizes now, by requests that it drops: they get no content
    virtual void Plan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst = false) = 0;
    /// Asks for sizes only.
    virtual void AskSizes(std::vector<PlannedFile> const& p_Files) = 0;
    /// None when it is not known (yet).
    virtual std::optional<std::uint64_t> SizeOf(std::string const& p_Path) const = 0;
    /// How the latest attempt at a path failed; none when it did not.
    virtual std::optional<FetchProblem> ProblemOf(std::string const& p_Path) const = 0;
    /// The latest failed attempt of the run.
    virtual std::optional<FetchProblem> LatestProblem() const = 0;
    /// The bytes of a file were not those that were announced: who gave them is put behind the
    /// others.
    virtual void Reject(std::string const& p_Path) = 0;

    /// Takes no more content from the network until `Continue`; what has arrived is handed on.
    void Pause() { SetPaused(true); }
    void Continue() { SetPaused(false); }
    /// \param p_BytesPerSecond 0: as fast as it comes
    virtual void SetRateLimit(std::uint64_t p_BytesPerSecond) = 0;

    virtual GatewaySnapshot Snapshot() const = 0;
    /// Base addresses: the content server's, then those of the host list.
    virtual std::vector<std::string> Servers() const = 0;
    /// \param p_OnReply called once, on a thread of the door's; not after its end
    virtual void Ask(Question p_Question, std::function<void(Reply)> p_OnReply) = 0;

protected:
    Gateway() = default;
    virtual void SetPaused(bool p_Paused) = 0;
};

} // namespace Varnholt::Gateway
