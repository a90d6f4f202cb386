#pragma once

#include <QtGlobal>

#include <vector>

namespace Varnholt::Host {

/// Tells when a transfer was begun anew several times without a byte: the module would go on with
/// that for ever.
class DropWatch {
public:
    /// \param p_Restarts a growing count
    /// \param p_Figures what tells the transfer and shows its bytes; a change begins anew
    /// \return true once there have been too many restarts
    bool Observe(quint32 p_Restarts, std::vector<quint64> const& p_Figures);

private:
    quint32 First = 0;
    std::vector<quint64> Figures;
};

} // namespace Varnholt::Host
