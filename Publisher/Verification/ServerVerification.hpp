#pragma once

#include "Publisher/Verification/VerificationSummary.hpp"
#include "Signing/PublicKey.hpp"

#include <QList>

namespace Varnholt::Publisher {

/// What a server is asked.
struct ServerVerificationOptions {
    QString BaseUrl; ///< of the default server
    QString AppId;
    int Sample = 0; ///< so many files are read whole on each server; of the rest, headers
    bool ReadsAll = false;
    QList<Signing::PublicKey> Keys = {}; ///< none: signatures are not looked at
};

/// Looks whether a server, and each mirror that it names, gives clients what its builds promise.
/// \throws Failure when the address is none
VerificationSummary VerifyServers(ServerVerificationOptions const& p_Options);

} // namespace Varnholt::Publisher
