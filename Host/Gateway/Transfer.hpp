#pragma once

#include "Host/Gateway/FetchProblem.hpp"
#include "Host/Gateway/GatewayOptions.hpp"

#include <curl/curl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Varnholt::Gateway {

/// What is asked of a server.
struct TransferRequest {
    std::string Url;
    std::string Range; ///< "0-0"; empty: the whole
    bool HeadersOnly = false;
    bool OfContentServer = false; ///< gets the user and the password
    std::size_t BlockBytes = 0;   ///< as which bytes are handed on, at most
};

/// The headers of the answer that counts: behind redirects.
struct AnswerHead {
    int Status = 0;
    std::optional<std::uint64_t> Length;     ///< of the body that follows
    std::optional<std::uint64_t> RangeBegin; ///< of a part: its first byte
    std::optional<std::uint64_t> RangeLast;  ///< and its last
    std::optional<std::uint64_t> Total;      ///< of the file that it is a part of
    bool IsEncoded = false;                  ///< the length is not that of the bytes handed on
    int RetryAfter = 0;                      ///< seconds; 0: not said
};

/// What becomes of the bytes that have arrived.
enum class Take {
    More,
    Later, ///< the same bytes come again once the transfer is resumed
    Stop,
};

/// Who a transfer reports to.
struct TransferEvents {
    /// Called once, before the first byte or the end. \return false to end the transfer
    std::function<bool(AnswerHead const&)> OnHead;
    std::function<Take(char const*, std::size_t)> OnBytes;
    /// Called once; not after a cancellation. The problem is none when the answer came whole, or
    /// when it was stopped by one of the above.
    std::function<void(std::optional<FetchProblem> const&)> OnEnd;
};

/// One request of libcurl's. Thread of the loop that it runs in.
class Transfer {
public:
    Transfer(TransferRequest p_Request, TransferEvents p_Events, GatewayOptions const& p_Options);
    ~Transfer();
    Transfer(Transfer const&) = delete;
    Transfer& operator=(Transfer const&) = delete;

    CURL* Handle() const { return Easy; }
    bool IsPaused() const { return Paused; }
    void Resume();
    /// Called when libcurl has ended it.
    void End(CURLcode p_Code);

private:
    void SetUp(GatewayOptions const& p_Options);
    void SetUpTrust(GatewayOptions const& p_Options);
    bool AnnounceHead();
    void ReadHeader(std::string const& p_Line);
    bool IsWayOutOfTls(std::string const& p_Line) const;
    void ReadRange(std::string const& p_Range);
    static std::size_t OnHeaderLine(char* p_Data, std::size_t, std::size_t p_Count, void* p_Self);
    static std::size_t OnBody(char* p_Data, std::size_t, std::size_t p_Count, void* p_Self);

    TransferRequest Request;
    TransferEvents Events;
    CURL* Easy;
    std::array<char, CURL_ERROR_SIZE> ErrorText{};
    AnswerHead Head;
    std::size_t HeaderBytes = 0;
    bool LeavesTls = false; ///< a redirect wants to
    bool IsAnnounced = false;
    bool Stopped = false;
    bool Paused = false;
};

} // namespace Varnholt::Gateway
