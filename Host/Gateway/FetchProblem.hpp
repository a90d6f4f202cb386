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
    };

    Type Kind = Type::Unreachable;
    std::string Url;    ///< without user and password
    std::string Cause;  ///< in words: "HTTP status 404", "connection refused"
    int HttpStatus = 0; ///< of the answer; 0 when there was none
};

} // namespace Varnholt::Gateway
