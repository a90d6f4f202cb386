#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Window/Pages/RateGraph.hpp"
#include "Host/Window/Pages/TimeLeft.hpp"
#include "Host/Window/Style/PagePalette.hpp"

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QWidget>

namespace Varnholt::Host {

class ElidedLabel;

/// How far a job is: a slim bar with the phase above it, figures and a graph for the panel's row.
class ProgressBox : public QWidget {
    Q_OBJECT

public:
    explicit ProgressBox(PagePalette const& p_Palette, QWidget* p_Parent = nullptr);

    /// Shows a look at a job. \param p_IsPaused though it may not hold yet
    void Show(RunSnapshot const& p_Snapshot, bool p_IsPaused);
    /// What comes is another job.
    void Reset();
    void Translate();
    /// Puts the time that is left among the figures, where it has room beside no other text.
    void Fold(bool p_IsNarrow);

    /// Amount, count and file; for the panel's row, which owns it.
    QWidget* Figures() const { return FigureBox; }
    RateGraph* Graph() const { return Rates; }

private:
    /// A text of figures, in a quiet colour.
    QLabel* QuietText();
    void MakeFigures();

    ElidedLabel* const Phase;
    QLabel* const Remaining;
    QLabel* const Percent;
    QProgressBar* const Bar;
    QWidget* const FigureBox;
    QLabel* const Amount;
    QLabel* const Below; ///< the time that is left once more
    QLabel* const Count;
    ElidedLabel* const File;
    RateGraph* const Rates;
    QElapsedTimer Clock;
    TimeLeft Left;
    RunPhase Latest = RunPhase::Idle;
};

} // namespace Varnholt::Host
