#include "Publisher/Cli/BuildProgress.hpp"

#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Failure.hpp"

#include <cstdio>
#include <unistd.h>

namespace Varnholt::Publisher {

namespace {

constexpr qint64 c_ShowMilliseconds = 100;
/// What shells report for a program that a signal has ended, less the signal's number.
constexpr int c_SignalStatus = 128;

} // namespace

BuildProgress::BuildProgress()
    : IsTerminal(::isatty(STDERR_FILENO) == 1)
{
}

BuildProgress::~BuildProgress()
{
    Clear();
}

void BuildProgress::PhaseStarted(QString const& p_Name, qint64 p_Bytes)
{
    std::lock_guard const lock(Mutex);
    Phase = p_Name;
    Total = p_Bytes;
    Read = 0;
    SinceShown.start();
}

void BuildProgress::BytesRead(qint64 p_Bytes)
{
    if (int const signal = Interruption::Signal())
        throw Failure(
            QStringLiteral("interrupted, nothing was published; the next run goes on from here"),
            c_SignalStatus + signal);
    Read += p_Bytes;
    std::unique_lock const lock(Mutex, std::try_to_lock);
    if (IsTerminal && lock.owns_lock() && SinceShown.elapsed() >= c_ShowMilliseconds)
        Show();
}

void BuildProgress::Warned(QString const& p_Sentence)
{
    Clear();
    ConsoleText::PrintErrorLine(QStringLiteral("varnholt-publish: warning: ") + p_Sentence);
}

void BuildProgress::Show()
{
    SinceShown.start();
    qint64 const read = Read;
    qint64 const percent = Total > 0 ? read * 100 / Total : 100;
    QString const line = QStringLiteral("\r%1 %2 %  %3 of %4\x1b[K")
                             .arg(Phase, QString::number(percent), ConsoleText::Bytes(read),
                                  ConsoleText::Bytes(Total));
    Programs::StandardStreams::Write(stderr, line);
}

void BuildProgress::Clear()
{
    if (IsTerminal)
        std::fputs("\r\x1b[K", stderr);
}

} // namespace Varnholt::Publisher
