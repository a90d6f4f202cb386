#pragma once

#include <QTcpSocket>

namespace Varnholt::TestSupport {

/// Whether the program at the other end, on this machine, has taken everything that was written to
/// a connection of IPv4 out of its socket.
bool PeerHasReadAll(QTcpSocket const& p_Socket);

} // namespace Varnholt::TestSupport
