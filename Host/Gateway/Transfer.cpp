#include "Host/Gateway/Transfer.hpp"

#include "Host/Gateway/HttpStatus.hpp"
#include "Host/Gateway/TransferProblem.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

namespace Varnholt::Gateway {

namespace {

constexpr std::size_t c_MostHeaderBytes = 128UL * 1024;
constexpr curl_off_t c_LongestDelay = 24L * 60 * 60; ///< seconds

template <typename Value>
void Set(CURL* p_Easy, CURLoption p_Option, Value p_Value)
{
    curl_easy_setopt(p_Easy, p_Option, p_Value);
}

void SetText(CURL* p_Easy, CURLoption p_Option, std::string const& p_Text)
{
    if (!p_Text.empty())
        curl_easy_setopt(p_Easy, p_Option, p_Text.c_str());
}

/// The value of a header line when it has that name, which is in lower case.
std::optional<std::string> ValueOf(std::string const& p_Line, std::string const& p_Name)
{
    if (p_Line.size() <= p_Name.size() || p_Line[p_Name.size()] != ':')
        return std::nullopt;
    bool const isNamed =
        std::equal(p_Name.begin(), p_Name.end(), p_Line.begin(),
                   [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
    if (!isNamed)
        return std::nullopt;
    auto const begin = p_Line.find_first_not_of(" \t", p_Name.size() + 1);
    auto const end = p_Line.find_last_not_of(" \t\r\n");
    return begin == std::string::npos || begin > end ? std::string()
                                                     : p_Line.substr(begin, end + 1 - begin);
}

std::optional<std::uint64_t> NumberOf(std::string const& p_Text)
{
    constexpr std::size_t c_MostDigits = 18;

    bool const isNumber = !p_Text.empty() && p_Text.size() <= c_MostDigits &&
                          std::all_of(p_Text.begin(), p_Text.end(), [](unsigned char p_Character) {
                              return std::isdigit(p_Character) != 0;
                          });
    return isNumber ? std::make_optional(std::strtoull(p_Text.c_str(), nullptr, 10)) : std::nullopt;
}

} // namespace

Transfer::Transfer(TransferRequest p_Request, TransferEvents p_Events,
                   GatewayOptions const& p_Options)
    : Request(std::move(p_Request))
    , Events(std::move(p_Events))
    , Easy(curl_easy_init())
{
    SetUp(p_Options);
    SetUpTrust(p_Options);
}

Transfer::~Transfer()
{
    curl_easy_cleanup(Easy);
}

void Transfer::SetUp(GatewayOptions const& p_Options)
{
    constexpr long c_MostRedirects = 8;

    Set(Easy, CURLOPT_PRIVATE, this);
    Set(Easy, CURLOPT_ERRORBUFFER, ErrorText.data());
    Set(Easy, CURLOPT_NOSIGNAL, 1L);
    Set(Easy, CURLOPT_URL, Request.Url.c_str());
    Set(Easy, CURLOPT_PATH_AS_IS, 1L);
    Set(Easy, CURLOPT_USERAGENT, "varnholt");
    SetText(Easy, CURLOPT_RANGE, Request.Range);
    Set(Easy, CURLOPT_NOBODY, Request.HeadersOnly ? 1L : 0L);
    // Nobody asks for compression; who compresses all the same is understood.
    Set(Easy, CURLOPT_ACCEPT_ENCODING, "identity");
    if (Request.BlockBytes != 0)
        Set(Easy, CURLOPT_BUFFERSIZE, static_cast<long>(Request.BlockBytes));

    Set(Easy, CURLOPT_FOLLOWLOCATION, 1L);
    Set(Easy, CURLOPT_MAXREDIRS, c_MostRedirects);
    bool const isSafe = Request.Url.rfind("https:", 0) == 0;
#if LIBCURL_VERSION_NUM >= 0x075500
    Set(Easy, CURLOPT_PROTOCOLS_STR, "http,https");
    Set(Easy, CURLOPT_REDIR_PROTOCOLS_STR, isSafe ? "https" : "http,https");
#else
    Set(Easy, CURLOPT_PROTOCOLS, CURLPROTO_HTTP | CURLPROTO_HTTPS);
    Set(Easy, CURLOPT_REDIR_PROTOCOLS, isSafe ? CURLPROTO_HTTPS : CURLPROTO_HTTP | CURLPROTO_HTTPS);
#endif

    Set(Easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(p_Options.ConnectTimeout.count()));
    Set(Easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    auto const stall = std::chrono::ceil<std::chrono::seconds>(p_Options.StallTime);
    Set(Easy, CURLOPT_LOW_SPEED_TIME, std::max(1L, static_cast<long>(stall.count())));
    Set(Easy, CURLOPT_TCP_KEEPALIVE, 1L);

    Set(Easy, CURLOPT_HEADERFUNCTION, &Transfer::OnHeaderLine);
    Set(Easy, CURLOPT_HEADERDATA, this);
    Set(Easy, CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    Set(Easy, CURLOPT_WRITEDATA, this);
}

void Transfer::SetUpTrust(GatewayOptions const& p_Options)
{
    SetText(Easy, CURLOPT_CAINFO, p_Options.CaFile);
    SetText(Easy, CURLOPT_PROXY, p_Options.Proxy);
    Set(Easy, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_OPTIONAL));
    SetText(Easy, CURLOPT_NETRC_FILE, p_Options.NetrcFile);
    if (!Request.OfContentServer || p_Options.User.empty())
        return;
    Set(Easy, CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    Set(Easy, CURLOPT_USERNAME, p_Options.User.c_str());
    Set(Easy, CURLOPT_PASSWORD, p_Options.Password.c_str());
}

std::size_t Transfer::OnHeaderLine(char* p_Data, std::size_t, std::size_t p_Count, void* p_Self)
{
    auto& self = *static_cast<Transfer*>(p_Self);
    self.HeaderBytes += p_Count;
    if (self.HeaderBytes > c_MostHeaderBytes)
        return 0;
    std::string const line(p_Data, p_Count);
    self.ReadHeader(line);
    self.LeavesTls = self.LeavesTls || self.IsWayOutOfTls(line);
    return self.LeavesTls ? 0 : p_Count;
}

/// libcurl knows one set of protocols for all redirects, wherever they start.
bool Transfer::IsWayOutOfTls(std::string const& p_Line) const
{
    constexpr long c_FirstRedirect = 300;

    auto const location = ValueOf(p_Line, "location");
    if (!location || ValueOf(*location, "http") == std::nullopt)
        return false;
    long status = 0;
    char const* scheme = nullptr;
    curl_easy_getinfo(Easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(Easy, CURLINFO_SCHEME, &scheme);
    bool const isSafe = scheme != nullptr && curl_strequal(scheme, "https") != 0;
    return isSafe && status >= c_FirstRedirect && status < HttpStatus::c_FirstError;
}

void Transfer::ReadHeader(std::string const& p_Line)
{
    if (p_Line.rfind("HTTP/", 0) == 0) { // of the next answer, behind a redirect
        Head = {};
        return;
    }
    if (auto const encoding = ValueOf(p_Line, "content-encoding"))
        Head.IsEncoded = !encoding->empty() && *encoding != "identity";
    if (auto const range = ValueOf(p_Line, "content-range"))
        ReadRange(*range);
}

/// "bytes 0-99/1000", "bytes 0-99/*" or "bytes */1000".
void Transfer::ReadRange(std::string const& p_Range)
{
    std::string const unit = "bytes ";
    auto const dash = p_Range.find('-');
    auto const slash = p_Range.find('/');
    if (p_Range.rfind(unit, 0) != 0 || slash == std::string::npos)
        return;
    std::string const total = p_Range.substr(slash + 1);
    Head.Total = NumberOf(total);
    if (dash == std::string::npos || dash > slash || (!Head.Total && total != "*"))
        return;
    Head.RangeBegin = NumberOf(p_Range.substr(unit.size(), dash - unit.size()));
    Head.RangeLast = NumberOf(p_Range.substr(dash + 1, slash - dash - 1));
}

bool Transfer::AnnounceHead()
{
    if (IsAnnounced)
        return !Stopped;
    IsAnnounced = true;
    long status = 0;
    curl_easy_getinfo(Easy, CURLINFO_RESPONSE_CODE, &status);
    Head.Status = static_cast<int>(status);
    curl_off_t length = -1;
    curl_easy_getinfo(Easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    if (length >= 0)
        Head.Length = static_cast<std::uint64_t>(length);
    curl_off_t delay = 0;
    curl_easy_getinfo(Easy, CURLINFO_RETRY_AFTER, &delay);
    Head.RetryAfter = static_cast<int>(std::min<curl_off_t>(delay, c_LongestDelay));
    Stopped = !Events.OnHead(Head);
    return !Stopped;
}

std::size_t Transfer::OnBody(char* p_Data, std::size_t, std::size_t p_Count, void* p_Self)
{
    auto& self = *static_cast<Transfer*>(p_Self);
    if (!self.AnnounceHead())
        return 0;
    switch (self.Events.OnBytes(p_Data, p_Count)) {
    case Take::More:
        return p_Count;
    case Take::Later:
        self.Paused = true;
        return CURL_WRITEFUNC_PAUSE;
    default:
        self.Stopped = true;
        return 0;
    }
}

void Transfer::Resume()
{
    Paused = false;
    curl_easy_pause(Easy, CURLPAUSE_CONT);
}

void Transfer::End(CURLcode p_Code)
{
    long status = 0;
    curl_easy_getinfo(Easy, CURLINFO_RESPONSE_CODE, &status);
    // A refusal is one though its page does not come.
    bool const isRefused =
        status >= HttpStatus::c_FirstError && HeaderBytes <= c_MostHeaderBytes && !LeavesTls;
    if (p_Code == CURLE_OK || isRefused)
        AnnounceHead();
    if (p_Code == CURLE_OK || Stopped)
        return Events.OnEnd(std::nullopt);
    if (HeaderBytes > c_MostHeaderBytes)
        return Events.OnEnd(FetchProblem{FetchProblem::Type::Unusable, Request.Url,
                                         FetchProblem::Cause::EndlessHeaders});
    if (LeavesTls)
        p_Code = CURLE_UNSUPPORTED_PROTOCOL;
    Events.OnEnd(TransferProblem(Easy, p_Code, Request.Url, ErrorText.data()));
}

} // namespace Varnholt::Gateway
