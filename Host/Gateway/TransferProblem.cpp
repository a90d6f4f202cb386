#include "Host/Gateway/TransferProblem.hpp"

#include "Host/Gateway/HostList.hpp"
#include "Host/Gateway/HttpStatus.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

namespace Varnholt::Gateway {

using namespace HttpStatus;

namespace {

using Type = FetchProblem::Type;

/// Whom libcurl says it could not connect to: "Failed to connect to HOST port PORT after …".
std::string PeerIn(std::string const& p_Text)
{
    std::string const before = "connect to ";
    std::string const between = " port ";
    auto const host = p_Text.find(before);
    auto const port = p_Text.find(between);
    if (host == std::string::npos || port == std::string::npos || port < host)
        return {};
    auto const begin = host + before.size();
    auto const number = port + between.size();
    auto const end = p_Text.find_first_not_of("0123456789", number);
    return p_Text.substr(begin, port - begin) + ':' +
           p_Text.substr(number, end == std::string::npos ? end : end - number);
}

std::string WithPort(std::string const& p_Url)
{
    std::string name = HostList::NameOf(p_Url);
    bool const hasPort = name.find(':', name.find(']') == std::string::npos ? 0 : name.find(']')) !=
                         std::string::npos;
    if (hasPort)
        return name;
    return name + (p_Url.rfind("https:", 0) == 0 ? ":443" : ":80");
}

/// Without the brackets of an IPv6 address, and whatever the case of a name.
bool IsSamePeer(std::string const& p_One, std::string const& p_Other)
{
    auto const plain = [](std::string p_Text) {
        p_Text.erase(std::remove_if(
                         p_Text.begin(), p_Text.end(),
                         [](char p_Character) { return p_Character == '[' || p_Character == ']'; }),
                     p_Text.end());
        std::transform(p_Text.begin(), p_Text.end(), p_Text.begin(), [](unsigned char p_Character) {
            return static_cast<char>(std::tolower(p_Character));
        });
        return p_Text;
    };
    return plain(p_One) == plain(p_Other);
}

std::string SystemCause(CURL* p_Easy)
{
    long error = 0;
    curl_easy_getinfo(p_Easy, CURLINFO_OS_ERRNO, &error);
    if (error == ECONNREFUSED)
        return "connection refused";
    if (error == ENETUNREACH || error == EHOSTUNREACH)
        return "no way to the host";
    return error == 0 ? "no connection" : std::strerror(static_cast<int>(error));
}

/// libcurl's words for a certificate's fault, without what it says before them.
std::string CertificateCause(std::string const& p_Text, CURLcode p_Code)
{
    std::string const before = "certificate problem: ";
    auto const at = p_Text.find(before);
    if (at != std::string::npos)
        return "certificate not trusted: " + p_Text.substr(at + before.size());
    if (p_Text.find("subject name") != std::string::npos)
        return "certificate not trusted: it is of another host's name";
    return p_Text.empty() ? curl_easy_strerror(p_Code) : p_Text;
}

FetchProblem Unconnected(CURL* p_Easy, std::string const& p_Url, std::string const& p_Text)
{
    std::string const peer = PeerIn(p_Text);
    std::string const cause = SystemCause(p_Easy);
    if (peer.empty() || IsSamePeer(peer, WithPort(p_Url)))
        return {Type::Unreachable, p_Url, cause, 0};
    char const* last = nullptr; // address of a redirection
    curl_easy_getinfo(p_Easy, CURLINFO_EFFECTIVE_URL, &last);
    if (last != nullptr && IsSamePeer(peer, WithPort(last)))
        return {Type::Unreachable, p_Url, "redirected to " + peer + ": " + cause, 0};
    return {Type::ProxyUnreachable, p_Url, "the proxy " + peer + " cannot be reached: " + cause, 0};
}

} // namespace

FetchProblem TransferProblem(CURL* p_Easy, CURLcode p_Code, std::string const& p_Url,
                             std::string const& p_Text)
{
    constexpr long c_FirstOther = 300;

    long answer = 0; // of a proxy that is asked for a way through
    curl_easy_getinfo(p_Easy, CURLINFO_HTTP_CONNECTCODE, &answer);
    if (answer >= c_FirstOther)
        return {Type::ProxyUnreachable, p_Url,
                "the proxy answers with HTTP status " + std::to_string(answer), 0};
    switch (p_Code) {
    case CURLE_COULDNT_CONNECT:
        return Unconnected(p_Easy, p_Url, p_Text);
    case CURLE_COULDNT_RESOLVE_HOST:
        return {Type::Unreachable, p_Url, "host not found", 0};
    case CURLE_COULDNT_RESOLVE_PROXY:
        return {Type::ProxyUnreachable, p_Url, "the proxy's host is not found", 0};
    case CURLE_OPERATION_TIMEDOUT:
        return {Type::Silent, p_Url, "no answer in time", 0};
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return {Type::Dropped, p_Url, "connection closed before the end", 0};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_ISSUER_ERROR:
        return {Type::Untrusted, p_Url, CertificateCause(p_Text, p_Code), 0};
    case CURLE_TOO_MANY_REDIRECTS:
        return {Type::Unusable, p_Url, "redirected too often", 0};
    case CURLE_UNSUPPORTED_PROTOCOL:
        return {Type::Unusable, p_Url, "redirected to an address of another kind", 0};
    default:
        return {Type::Unusable, p_Url,
                p_Text.empty() ? std::string(curl_easy_strerror(p_Code)) : p_Text, 0};
    }
}

FetchProblem StatusProblem(int p_Status, std::string const& p_Url)
{
    return {Type::Refused, p_Url, "HTTP status " + std::to_string(p_Status), p_Status};
}

bool IsOfTheFile(int p_Status)
{
    return p_Status < c_FirstServerError && p_Status != c_Timeout && p_Status != c_TooEarly &&
           p_Status != c_TooManyRequests;
}

} // namespace Varnholt::Gateway
