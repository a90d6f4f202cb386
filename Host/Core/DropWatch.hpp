#pragma once

#include <QtGlobal>

namespace Varnholt::Host {

/// Tells when a transfer that is begun anew again and again comes no further: the module would go
/// on with that for ever.
class DropWatch {
public:
    /// \param p_Restarts a growing count
    /// \param p_Transfer tells one transfer from another
    /// \param p_Bytes what it has; fewer than before when it was begun from its start
    /// \return true once there have been too many restarts; the count then begins anew
    bool Observe(quint32 p_Restarts, quint32 p_Transfer, quint64 p_Bytes);

private:
    bool IsTooMany(quint32 p_Restarts) const;

    bool IsBegun = false;
    quint32 Transfer = 0;
    quint64 Bytes = 0;
    quint64 Most = 0;   ///< bytes that it ever had
    quint32 First = 0;  ///< restarts when its bytes last changed
    quint32 Losses = 0; ///< how often it lost its bytes since it had the most
};

} // namespace Varnholt::Host
