#include "Host/Window/Pages/ProgressBox.hpp"

#include "Host/Window/Pages/ProgressTexts.hpp"
#include "Host/Window/Style/ElidedLabel.hpp"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QVariant>

namespace Varnholt::Host {

ProgressBox::ProgressBox(PagePalette const& p_Palette, QWidget* p_Parent)
    : QWidget(p_Parent)
    , Phase(new ElidedLabel)
    , Remaining(QuietText())
    , Percent(new QLabel)
    , Bar(new QProgressBar)
    , FigureBox(new QWidget)
    , Amount(QuietText())
    , Below(QuietText())
    , Count(QuietText())
    , File(new ElidedLabel)
    , Rates(new RateGraph(p_Palette))
{
    constexpr int c_BarHeight = 6;

    Phase->setObjectName(QStringLiteral("headline"));
    Percent->setObjectName(QStringLiteral("percent"));
    File->setObjectName(QStringLiteral("file"));
    File->setProperty("quiet", true);
    Bar->setFixedHeight(c_BarHeight);
    Bar->setTextVisible(false);
    auto* const row = new QHBoxLayout;
    row->addWidget(Phase, 1);
    row->addWidget(Remaining);
    row->addSpacing(12);
    row->addWidget(Percent);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addLayout(row);
    layout->addWidget(Bar);
    MakeFigures();
    Clock.start();
    Translate();
}

void ProgressBox::MakeFigures()
{
    auto* const line = new QHBoxLayout;
    line->setSpacing(10);
    line->addWidget(Count);
    line->addWidget(File, 1);
    auto* const figures = new QVBoxLayout(FigureBox);
    figures->setContentsMargins(0, 0, 0, 0);
    figures->setSpacing(2);
    figures->addWidget(Amount);
    figures->addWidget(Below);
    figures->addLayout(line);
}

QLabel* ProgressBox::QuietText()
{
    auto* const label = new QLabel;
    label->setProperty("quiet", true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

void ProgressBox::Translate()
{
    Bar->setAccessibleName(tr("Progress"));
    Rates->setAccessibleName(tr("Rate of the last two minutes"));
    Rates->setToolTip(tr("Rate of the last two minutes"));
}

void ProgressBox::Fold(bool p_IsNarrow)
{
    Remaining->setVisible(!p_IsNarrow);
    Below->setVisible(p_IsNarrow && !Below->text().isEmpty());
}

void ProgressBox::Reset()
{
    Left.Reset();
    Rates->Clear();
    Latest = RunPhase::Idle;
}

void ProgressBox::Show(RunSnapshot const& p_Snapshot, bool p_IsPaused)
{
    constexpr int c_Whole = 1'000;

    // A file that is verified between two that arrive is no other measure.
    bool const isSameMeasure = IsDownloading(Latest) && p_Snapshot.Phase == RunPhase::Verifying;
    if (!isSameMeasure && Latest != p_Snapshot.Phase) {
        Left.Reset();
        Latest = p_Snapshot.Phase;
    }
    if (p_IsPaused)
        Left.Reset();
    else
        Left.Add(Clock.elapsed(), p_Snapshot.BytesDone, p_Snapshot.BytesTotal);
    Rates->Add(Clock.elapsed(), p_Snapshot.Rate);

    ProgressTexts const texts = ProgressTexts::Of(p_Snapshot, Left.Seconds(), p_IsPaused);
    Phase->setText(texts.Phase);
    Remaining->setText(texts.Left);
    Below->setText(texts.Left);
    Fold(Remaining->isHidden());
    Percent->setText(texts.Percent);
    bool const isMeasured = texts.Permille >= 0;
    Bar->setRange(0, isMeasured || p_IsPaused ? c_Whole : 0); // 0: a bar that only moves
    Bar->setValue(isMeasured ? texts.Permille : 0);
    Amount->setText(texts.Amount);
    Count->setText(texts.Count);
    File->setText(texts.File);
}

} // namespace Varnholt::Host
