#pragma once

#include <QtGlobal>

namespace Varnholt::Host {

/// What a run has fetched, or, of one that only looks, compared.
struct RunTotals {
    quint32 Files = 0;       ///< repeated ones counted again
    quint64 Bytes = 0;       ///< from the network, or of the files that were read
    qint64 Milliseconds = 0; ///< from the run's begin to its end
    quint64 Rate = 0;        ///< bytes per second on average of the time in which bytes moved
};

} // namespace Varnholt::Host
