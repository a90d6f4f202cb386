#include "Host/Window/Pages/ProgressTexts.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace Varnholt::Host {

namespace {

struct FigureTexts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::ProgressTexts)
};

QString Joined(QStringList p_Parts)
{
    p_Parts.removeAll({});
    return p_Parts.join(QStringLiteral(" · "));
}

/// Of bytes where they are counted, else of files.
int PermilleOf(RunSnapshot const& p_Snapshot)
{
    constexpr quint64 c_Whole = 1'000;

    bool const bytes = p_Snapshot.BytesTotal > 0;
    quint64 const total = bytes ? p_Snapshot.BytesTotal : p_Snapshot.FileCount;
    quint64 const done = bytes ? p_Snapshot.BytesDone : p_Snapshot.FileNumber;
    return total == 0 ? -1 : static_cast<int>(std::min(done, total) * c_Whole / total);
}

bool Reads(RunPhase p_Phase)
{
    return p_Phase == RunPhase::Verifying || p_Phase == RunPhase::Comparing ||
           p_Phase == RunPhase::ComparingStreamed;
}

QString RateOf(RunSnapshot const& p_Snapshot)
{
    if (p_Snapshot.Rate == 0)
        return {};
    return (Reads(p_Snapshot.Phase) ? FigureTexts::tr("checks %1/s") : FigureTexts::tr("%1/s"))
        .arg(ProgressTexts::Size(p_Snapshot.Rate));
}

} // namespace

ProgressTexts ProgressTexts::Of(RunSnapshot const& p_Snapshot, std::optional<qint64> p_Left,
                                bool p_IsPaused)
{
    constexpr int c_PerPercent = 10;

    QLocale const locale;
    ProgressTexts texts;
    texts.Phase = RunText::Capitalized(PhaseText(p_Snapshot.Phase));
    if (p_IsPaused)
        texts.Phase = p_Snapshot.IsHeld || p_Snapshot.Phase == RunPhase::Suspended
                          ? FigureTexts::tr("Paused")
                          : FigureTexts::tr("Pausing…");
    texts.Permille = PermilleOf(p_Snapshot);
    if (texts.Permille >= 0)
        texts.Percent = FigureTexts::tr("%1 %").arg(locale.toString(texts.Permille / c_PerPercent));
    bool const moves = Reads(p_Snapshot.Phase) || IsDownloading(p_Snapshot.Phase);
    QString bytes;
    if (p_Snapshot.BytesTotal > 0) {
        bytes = FigureTexts::tr("%1 of %2")
                    .arg(Size(p_Snapshot.BytesDone), Size(p_Snapshot.BytesTotal));
        if (moves && !p_IsPaused)
            texts.Left = p_Left ? FigureTexts::tr("%1 left").arg(Duration(*p_Left))
                                : FigureTexts::tr("time left not known yet");
    }
    texts.Amount =
        RunText::Capitalized(Joined({bytes, p_IsPaused ? QString() : RateOf(p_Snapshot)}));
    if (p_Snapshot.FileNumber > 0)
        texts.Count =
            FigureTexts::tr("File %1 of %2")
                .arg(locale.toString(p_Snapshot.FileNumber), locale.toString(p_Snapshot.FileCount));
    texts.File = p_Snapshot.File;
    return texts;
}

QString ProgressTexts::WaitText(ServerWait const& p_Wait)
{
    QString silent = FigureTexts::tr("Nothing has come from %1 for %2.")
                         .arg(p_Wait.Server, Duration(p_Wait.Silent));
    if (!p_Wait.IsRetry())
        return silent;
    QString const number = p_Wait.Attempts > 0 ? FigureTexts::tr("Attempt %1 of %2")
                                                     .arg(QLocale().toString(p_Wait.Attempt),
                                                          QLocale().toString(p_Wait.Attempts))
                                               : FigureTexts::tr("Attempt %1").arg(p_Wait.Attempt);
    return p_Wait.NextAttempt > 0 ? FigureTexts::tr("%1 %2 in %n second(s).", nullptr,
                                                    static_cast<int>(p_Wait.NextAttempt))
                                        .arg(silent, number)
                                  : FigureTexts::tr("%1 %2 is under way.").arg(silent, number);
}

QString ProgressTexts::Size(quint64 p_Bytes)
{
    constexpr quint64 c_Kibibyte = 1'024;

    return QLocale().formattedDataSize(static_cast<qint64>(p_Bytes), p_Bytes < c_Kibibyte ? 0 : 1,
                                       QLocale::DataSizeIecFormat);
}

QString ProgressTexts::Duration(qint64 p_Seconds)
{
    constexpr qint64 c_Step = 5;
    constexpr qint64 c_Minute = 60;
    constexpr qint64 c_Hour = 60 * c_Minute;

    auto const rounded = [&](qint64 p_Unit) { return (p_Seconds + p_Unit - 1) / p_Unit; };
    if (rounded(c_Step) * c_Step < c_Minute)
        return FigureTexts::tr("%n second(s)", nullptr, static_cast<int>(rounded(c_Step) * c_Step));
    if (p_Seconds <= c_Hour - c_Minute)
        return FigureTexts::tr("%n minute(s)", nullptr, static_cast<int>(rounded(c_Minute)));
    qint64 const minutes = rounded(c_Step * c_Minute) * c_Step;
    return FigureTexts::tr("%1 h %2 min")
        .arg(QLocale().toString(minutes / c_Minute), QLocale().toString(minutes % c_Minute));
}

} // namespace Varnholt::Host
