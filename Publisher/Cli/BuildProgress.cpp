#include "Publisher/Cli/BuildProgress.hpp"

#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Failure.hpp"

#include <cstdio>
#include <unistd.h>

namespace Varnholt::Publisher {

namespace {

constexpr qint64 c_LineMilliseconds = 100;
constexpr qint64 c_ObjectMilliseconds = 500;
/// What shells report for a program that a signal has ended, less the signal's number.
constexpr int c_SignalStatus = 128;

} // namespace

BuildProgress::BuildProgress(bool p_Json)
    : Json(p_Json)
    , IsShown(p_Json || ::isatty(STDERR_FILENO) == 1)
{
}

BuildProgress::~BuildProgress()
{
    ShowRest();
    Clear();
}

void BuildProgress::PhaseStarted(QString const& p_Name, qint64 p_Bytes)
{
    std::lock_guard const lock(Mutex);
    ShowRest();
    Phase = p_Name;
    Total = p_Bytes;
    Read = 0;
    Shown = 0;
    SinceShown.start();
    if (Json)
        Show();
}

void BuildProgress::BytesRead(qint64 p_Bytes)
{
    if (int const signal = Interruption::Signal())
        throw Failure(
            QStringLiteral("interrupted, nothing was published; the next run goes on from here"),
            c_SignalStatus + signal);
    Read += p_Bytes;
    std::unique_lock const lock(Mutex, std::try_to_lock);
    qint64 const pause = Json ? c_ObjectMilliseconds : c_LineMilliseconds;
    if (IsShown && lock.owns_lock() && SinceShown.elapsed() >= pause)
        Show();
}

void BuildProgress::Warned(QString const& p_Sentence)
{
    if (Json) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("notice")},
                                {QStringLiteral("text"), p_Sentence}});
        return;
    }
    Clear();
    ConsoleText::PrintErrorLine(QStringLiteral("varnholt-publish: warning: ") + p_Sentence);
}

void BuildProgress::Show()
{
    SinceShown.start();
    qint64 const read = Read;
    Shown = read;
    if (Json) {
        QString const phase = Phase.toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("progress")},
                                {QStringLiteral("phase"), phase},
                                {QStringLiteral("bytes"), read},
                                {QStringLiteral("total"), Total}});
        return;
    }
    qint64 const percent = Total > 0 ? read * 100 / Total : 100;
    QString const line = QStringLiteral("\r%1 %2 %  %3 of %4\x1b[K")
                             .arg(Phase, QString::number(percent), ConsoleText::Bytes(read),
                                  ConsoleText::Bytes(Total));
    Programs::StandardStreams::Write(stderr, line);
}

/// The end of a phase comes between two looks.
void BuildProgress::ShowRest()
{
    if (Json && Shown != Read)
        Show();
}

void BuildProgress::Clear()
{
    if (IsShown && !Json)
        std::fputs("\r\x1b[K", stderr);
}

} // namespace Varnholt::Publisher
