#include "Host/Cli/ProgressText.hpp"

#include "Host/Core/Failures/ByteText.hpp"
#include "Programs/Printable.hpp"

#include <QStringList>

#include <algorithm>

namespace Varnholt::Host::ProgressText {

namespace {

/// Of bytes when their total is known, else of files; negative when neither is.
int Permille(RunSnapshot const& p_Snapshot)
{
    constexpr quint64 c_Whole = 1000;

    bool const bytes = p_Snapshot.BytesTotal > 0;
    quint64 const total = bytes ? p_Snapshot.BytesTotal : p_Snapshot.FileCount;
    quint64 const done = bytes ? p_Snapshot.BytesDone : p_Snapshot.FileNumber;
    return total == 0 ? -1 : static_cast<int>(std::min(done, total) * c_Whole / total);
}

QStringList Figures(RunSnapshot const& p_Snapshot)
{
    QStringList figures;
    if (p_Snapshot.BytesTotal > 0)
        figures += QStringLiteral("%1 of %2")
                       .arg(ByteText(p_Snapshot.BytesDone), ByteText(p_Snapshot.BytesTotal));
    if (p_Snapshot.Rate > 0)
        figures += QStringLiteral("%1/s").arg(ByteText(p_Snapshot.Rate));
    if (p_Snapshot.Remaining >= 0)
        figures += QStringLiteral("%1 left").arg(Duration(p_Snapshot.Remaining));
    return figures;
}

/// The servers that have brought something lately.
QString Source(RunSnapshot const& p_Snapshot)
{
    QStringList names;
    for (ServerShare const& server : p_Snapshot.Servers)
        if (server.Rate > 0)
            names += server.Name;
    return names.size() > 1 ? names.join(QStringLiteral(", ")) : p_Snapshot.Mirror;
}

/// "12 s" or "5 min 3 s".
QString Seconds(qint64 p_Seconds)
{
    constexpr qint64 c_Minute = 60;

    QString const seconds = QStringLiteral("%1 s").arg(p_Seconds % c_Minute);
    return p_Seconds < c_Minute ? seconds
                                : QStringLiteral("%1 min ").arg(p_Seconds / c_Minute) + seconds;
}

QString SilenceText(ServerWait const& p_Wait)
{
    return QStringLiteral("silent for ") + Seconds(p_Wait.Silent);
}

QString AttemptText(ServerWait const& p_Wait)
{
    QString attempt = QStringLiteral("next attempt");
    if (p_Wait.IsRetry())
        attempt = QStringLiteral("attempt %1").arg(p_Wait.Attempt);
    if (p_Wait.Attempts > 0)
        attempt += QStringLiteral(" of %1").arg(p_Wait.Attempts);
    return QStringLiteral("server %1, %2 %3")
        .arg(SilenceText(p_Wait), attempt,
             p_Wait.NextAttempt > 0 ? QStringLiteral("in ") + Seconds(p_Wait.NextAttempt)
                                    : QStringLiteral("under way"));
}

QString WaitText(ServerWait const& p_Wait)
{
    return QStringLiteral("%1 (%2: %3)").arg(AttemptText(p_Wait), p_Wait.Server, p_Wait.Cause);
}

/// The first that fits uncut: half a number is a wrong one.
QString Fitting(QStringList const& p_Lines, int p_Width)
{
    auto const line = std::find_if(p_Lines.begin(), p_Lines.end(),
                                   [&](QString const& p_Line) { return p_Line.size() <= p_Width; });
    return line == p_Lines.end() ? QString() : *line;
}

/// In a narrow terminal the figures go first, and what is waited for stays.
QString WaitBar(RunSnapshot const& p_Snapshot, QString const& p_Percent, int p_Width)
{
    ServerWait const& wait = *p_Snapshot.Wait;
    QString const phase = PhaseText(p_Snapshot.Phase) + QStringLiteral("  ");
    return Fitting({phase + p_Percent + WaitText(wait), phase + WaitText(wait), WaitText(wait),
                    AttemptText(wait), SilenceText(wait)},
                   p_Width);
}

/// The numbers without the phase, as many as have room.
QString NarrowBar(QString const& p_Count, QString const& p_Percent, QStringList p_Figures,
                  int p_Width)
{
    QString const gap = QStringLiteral("  ");
    QString const figures = p_Figures.join(QStringLiteral(", "));
    QStringList lines{p_Count + gap + p_Percent + gap + figures};
    for (; !p_Figures.isEmpty(); p_Figures.removeLast())
        lines += p_Percent + gap + p_Figures.join(QStringLiteral(", "));
    return Fitting(lines + QStringList(p_Percent), p_Width);
}

/// The name's end tells most.
QString Shortened(QString const& p_File, int p_Width, bool p_Unicode)
{
    if (p_File.size() <= p_Width)
        return p_File;
    QString const mark = p_Unicode ? QString(QChar(0x2026)) : QStringLiteral("...");
    QString end = p_File.right(p_Width - mark.size());
    if (end.at(0).isLowSurrogate())
        end.remove(0, 1); // half a character
    return mark + end;
}

QString DrawnBar(int p_Permille, int p_Cells, bool p_Unicode)
{
    constexpr int c_Whole = 1000;

    int const filled = p_Permille * p_Cells / c_Whole;
    QChar const full = p_Unicode ? QChar(0x2588) : QLatin1Char('#');
    QChar const empty = p_Unicode ? QChar(0x2591) : QLatin1Char('-');
    return QString(filled, full) + QString(p_Cells - filled, empty);
}

} // namespace

QString Duration(qint64 p_Seconds)
{
    constexpr qint64 c_Minute = 60;
    constexpr qint64 c_Hour = 60 * c_Minute;

    qint64 const hours = p_Seconds / c_Hour;
    qint64 const minutes = p_Seconds % c_Hour / c_Minute;
    QString const seconds = QStringLiteral("%1").arg(p_Seconds % c_Minute, 2, 10, QLatin1Char('0'));
    if (hours == 0)
        return QStringLiteral("%1:%2").arg(minutes).arg(seconds);
    return QStringLiteral("%1:%2:%3").arg(hours).arg(minutes, 2, 10, QLatin1Char('0')).arg(seconds);
}

QString Percent(RunSnapshot const& p_Snapshot)
{
    int const permille = Permille(p_Snapshot);
    return permille < 0 ? QString() : QStringLiteral("%1 %").arg(permille / 10);
}

QString Line(RunSnapshot const& p_Snapshot)
{
    QString line = PhaseText(p_Snapshot.Phase);
    QStringList parts;
    if (p_Snapshot.FileCount > 0) {
        QString file =
            QStringLiteral("file %1 of %2").arg(p_Snapshot.FileNumber).arg(p_Snapshot.FileCount);
        if (!p_Snapshot.File.isEmpty())
            file += QStringLiteral(" (%1)").arg(p_Snapshot.File);
        parts += file;
    }
    parts += Figures(p_Snapshot);
    if (p_Snapshot.Wait)
        parts += WaitText(*p_Snapshot.Wait);
    else if (QString const source = Source(p_Snapshot); !source.isEmpty())
        parts += QStringLiteral("from %1").arg(source);
    return parts.isEmpty() ? line : line + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
}

QString Bar(RunSnapshot const& p_Snapshot, int p_Width, bool p_Unicode)
{
    constexpr int c_MostCells = 30;
    constexpr int c_FewestCells = 10;

    QString const phase = PhaseText(p_Snapshot.Phase);
    int const permille = Permille(p_Snapshot);
    QString const percent = Percent(p_Snapshot);
    if (p_Snapshot.Wait)
        return WaitBar(p_Snapshot, permille < 0 ? QString() : percent + QStringLiteral("  "),
                       p_Width);
    if (permille < 0)
        return phase.left(p_Width);
    QString const count =
        QStringLiteral("%1/%2").arg(p_Snapshot.FileNumber).arg(p_Snapshot.FileCount);
    QStringList const figures = Figures(p_Snapshot);
    QString line = phase + QStringLiteral("  ") + count;
    QString tail = percent.rightJustified(6);
    if (!figures.isEmpty())
        tail += QStringLiteral("  ") + figures.join(QStringLiteral(", "));
    if (line.size() + tail.size() > p_Width)
        return NarrowBar(count, percent, figures, p_Width);

    int const room = p_Width - line.size() - tail.size() - 2;
    int const cells = std::min(c_MostCells, room);
    if (cells >= c_FewestCells)
        line += QStringLiteral("  ") + DrawnBar(permille, cells, p_Unicode);
    line += tail;
    int const left = p_Width - line.size() - 2;
    if (!p_Snapshot.File.isEmpty() && left >= c_FewestCells)
        line +=
            QStringLiteral("  ") + Shortened(Programs::Printable(p_Snapshot.File), left, p_Unicode);
    return line;
}

} // namespace Varnholt::Host::ProgressText
