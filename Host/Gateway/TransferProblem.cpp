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

using Cause = FetchProblem::Cause;
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

/// libcurl's words, where nothing better is known.
FetchProblem Told(Type p_Kind, std::string const& p_Url, std::string const& p_Text, CURLcode p_Code)
{
    return {p_Kind, p_Url, Cause::Told, 0, p_Text.empty() ? curl_easy_strerror(p_Code) : p_Text};
}

/// Without what libcurl says before a certificate's fault.
FetchProblem Untrusted(std::string const& p_Url, std::string const& p_Text, CURLcode p_Code)
{
    std::string const before = "certificate problem: ";
    auto const at = p_Text.find(before);
    if (at != std::string::npos)
        return {Type::Untrusted, p_Url, Cause::CertificateProblem, 0,
                p_Text.substr(at + before.size())};
    if (p_Text.find("subject name") != std::string::npos)
        return {Type::Untrusted, p_Url, Cause::CertificateOfAnother};
    return Told(Type::Untrusted, p_Url, p_Text, p_Code);
}

FetchProblem Unconnected(CURL* p_Easy, std::string const& p_Url, std::string const& p_Text)
{
    FetchProblem problem{Type::Unreachable, p_Url, Cause::NoConnection};
    long error = 0;
    curl_easy_getinfo(p_Easy, CURLINFO_OS_ERRNO, &error);
    if (error == ECONNREFUSED)
        problem.Why = Cause::ConnectionRefused;
    else if (error == ENETUNREACH || error == EHOSTUNREACH)
        problem.Why = Cause::NoRoute;
    else if (error != 0) {
        problem.Why = Cause::Told;
        problem.Detail = std::strerror(static_cast<int>(error));
    }
    std::string const peer = PeerIn(p_Text);
    if (peer.empty() || IsSamePeer(peer, WithPort(p_Url)))
        return problem;
    problem.Peer = peer;
    char const* last = nullptr; // address of a redirection
    curl_easy_getinfo(p_Easy, CURLINFO_EFFECTIVE_URL, &last);
    if (last == nullptr || !IsSamePeer(peer, WithPort(last)))
        problem.Kind = Type::ProxyUnreachable;
    return problem;
}

} // namespace

FetchProblem TransferProblem(CURL* p_Easy, CURLcode p_Code, std::string const& p_Url,
                             std::string const& p_Text)
{
    constexpr long c_FirstOther = 300;

    long answer = 0; // of a proxy that is asked for a way through
    curl_easy_getinfo(p_Easy, CURLINFO_HTTP_CONNECTCODE, &answer);
    if (answer >= c_FirstOther)
        return {Type::ProxyUnreachable, p_Url, Cause::ProxyStatus, 0, std::to_string(answer)};
    switch (p_Code) {
    case CURLE_COULDNT_CONNECT:
        return Unconnected(p_Easy, p_Url, p_Text);
    case CURLE_COULDNT_RESOLVE_HOST:
        return {Type::Unreachable, p_Url, Cause::HostNotFound};
    case CURLE_COULDNT_RESOLVE_PROXY:
        return {Type::ProxyUnreachable, p_Url, Cause::ProxyNotFound};
    case CURLE_OPERATION_TIMEDOUT:
        return {Type::Silent, p_Url, Cause::NoAnswer};
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return {Type::Dropped, p_Url, Cause::EndsEarly};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_ISSUER_ERROR:
        return Untrusted(p_Url, p_Text, p_Code);
    case CURLE_TOO_MANY_REDIRECTS:
        return {Type::Unusable, p_Url, Cause::RedirectedTooOften};
    case CURLE_UNSUPPORTED_PROTOCOL:
        return {Type::Unusable, p_Url, Cause::RedirectedElsewhere};
    default:
        return Told(Type::Unusable, p_Url, p_Text, p_Code);
    }
}

FetchProblem StatusProblem(int p_Status, std::string const& p_Url)
{
    return {Type::Refused, p_Url, Cause::Status, p_Status, std::to_string(p_Status)};
}

bool IsOfTheFile(int p_Status)
{
    return p_Status < c_FirstServerError && p_Status != c_Timeout && p_Status != c_TooEarly &&
           p_Status != c_TooManyRequests;
}

} // namespace Varnholt::Gateway
