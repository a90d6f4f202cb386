#pragma once

#include <string>

namespace Varnholt::Gateway {

/// Why an address was not fetched, fit to be told: it names the real server, never the door.
struct FetchProblem {
    enum class Type {
        Unreachable,      ///< no connection: refused, no such host, no route
        ProxyUnreachable, ///< the same of the proxy, which the cause names
        Untrusted,        ///< the server's certificate
        Silent,           ///< nothing arrived in time
        Dropped,          ///< the answer ended before its end
        Refused,          ///< the server answered with a status that is none of success
        Unusable,         ///< the answer is not what was asked for
        // Of a document that is not handed on, see `DocumentJudge`.
        Unsigned,       ///< there is no signature of it
        Forged,         ///< it is not what was signed
        ForeignKey,     ///< somebody else has signed it
        Misplaced,      ///< it is signed as another document, of another game or channel
        RolledBack,     ///< it is older than one that was seen before
        Expired,        ///< it was to be replaced by now
        OfAnotherBuild, ///< a manifest: the version file names another one
    };

    /// What exactly. The words for it are the host's, in the language of its user.
    enum class Cause {
        Told, ///< as `Detail` has it
        Status,
        ConnectionRefused,
        NoRoute,
        NoConnection,
        HostNotFound,
        ProxyNotFound,
        ProxyStatus,
        NoAnswer,
        NobodyAsked,
        EndsEarly,
        CertificateProblem,
        CertificateOfAnother,
        RedirectedTooOften,
        RedirectedElsewhere, ///< to an address of another kind
        EndlessHeaders,
        OtherPart, ///< than was asked for
        Packed,
        PartsPacked,
        OtherLength, ///< than was told before
        TooLarge,
        TooMuch, ///< more than was asked for
        NoHostList,
    };

    Type Kind = Type::Unreachable;
    std::string Url; ///< without user and password
    Cause Why = Cause::Told;
    int HttpStatus = 0;      ///< of the answer; 0 when there was none
    std::string Detail = {}; ///< of the cause: a status, or the words of a system or a library
    std::string Peer = {};   ///< who it was if not the server: a proxy, the target of a redirection

    /// Whether something has come that its publisher does not vouch for.
    bool IsDistrust() const { return Kind >= Type::Unsigned; }
};

} // namespace Varnholt::Gateway
