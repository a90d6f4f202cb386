#include "Host/Cli/Console.hpp"

#include "Programs/Printable.hpp"
#include "Programs/StandardStreams.hpp"

#include <QMutexLocker>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Varnholt::Host {

using Programs::Printable;
using Programs::StandardStreams::Write;

namespace {

constexpr char c_Red[] = "31";
constexpr char c_Bold[] = "1";

bool IsCapable()
{
    return ::isatty(STDERR_FILENO) == 1 && qgetenv("TERM") != "dumb" && !qgetenv("TERM").isEmpty();
}

bool WantsColors(Color p_Colors)
{
    if (p_Colors == Color::Auto)
        return IsCapable() && qEnvironmentVariableIsEmpty("NO_COLOR");
    return p_Colors == Color::Always;
}

/// All output is UTF-8, which a terminal of another locale would show as gibberish.
bool IsUtf8Locale()
{
    for (char const* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        QByteArray const value = qgetenv(name).toLower();
        if (!value.isEmpty())
            return value.contains("utf-8") || value.contains("utf8");
    }
    return false;
}

} // namespace

Console::Console(Color p_Colors, bool p_Quiet)
    : Quiet(p_Quiet)
    , Redraws(IsCapable())
    , UsesColors(WantsColors(p_Colors))
    , Unicode(IsUtf8Locale())
{
}

Console::~Console()
{
    ShowStatus({});
}

void Console::Result(QString const& p_Line)
{
    QMutexLocker const lock(&OutputMutex);
    if (!Status.isEmpty())
        Write(stderr, QStringLiteral("\r\x1b[K"));
    Write(stdout, Printable(p_Line) + QLatin1Char('\n'));
    DrawStatus();
}

void Console::Note(QString const& p_Line)
{
    if (!Quiet)
        WriteAbove(Printable(p_Line));
}

void Console::Error(QString const& p_Sentence, QString const& p_Remedy, bool p_IsAlarming)
{
    QString const sentence = Printable(p_Sentence);
    QString line = Colored(QStringLiteral("varnholt-host: "), c_Bold) +
                   (p_IsAlarming ? Colored(sentence, c_Red) : sentence);
    if (!p_Remedy.isEmpty())
        line += QStringLiteral("; ") + Printable(p_Remedy);
    WriteAbove(line.endsWith(QLatin1Char('?')) ? line : line + QLatin1Char('.'));
}

void Console::Log(QString const& p_Line)
{
    WriteAbove(Printable(p_Line));
}

void Console::ShowStatus(QString const& p_Line)
{
    QMutexLocker const lock(&OutputMutex);
    if (!Redraws || (Status.isEmpty() && p_Line.isEmpty()))
        return;
    Status = Printable(p_Line);
    if (Status.isEmpty())
        Write(stderr, QStringLiteral("\r\x1b[K"));
    DrawStatus();
}

int Console::Width() const
{
    constexpr int c_UsualWidth = 80;

    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return c_UsualWidth;
}

void Console::WriteAbove(QString const& p_Line)
{
    QMutexLocker const lock(&OutputMutex);
    QString const clear = Status.isEmpty() ? QString() : QStringLiteral("\r\x1b[K");
    Write(stderr, clear + p_Line + QLatin1Char('\n'));
    DrawStatus();
}

void Console::DrawStatus()
{
    // One column stays free: some terminals go to the next line when the last one is filled.
    if (!Status.isEmpty())
        Write(stderr, QLatin1Char('\r') + Status.left(Width() - 1) + QStringLiteral("\x1b[K"));
}

QString Console::Colored(QString const& p_Text, char const* p_Code) const
{
    return UsesColors ? QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(p_Code), p_Text)
                      : p_Text;
}

} // namespace Varnholt::Host
