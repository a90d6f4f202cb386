#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"

#include <QElapsedTimer>

namespace Varnholt::Host {

class Console;

/// Shows a run: a line redrawn in place on a terminal, otherwise a plain line at each new phase and
/// every few seconds.
class ProgressView {
public:
    explicit ProgressView(Console& p_Console);

    void Show(RunSnapshot const& p_Snapshot);
    /// Takes the line away.
    void Clear();

private:
    Console& Output;
    RunPhase Phase = RunPhase::Idle;
    QElapsedTimer SinceLine;
};

} // namespace Varnholt::Host
