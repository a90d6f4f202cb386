#include "Host/Cli/Prompt.hpp"

#include "Host/Cli/OptionText.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Programs/Printable.hpp"
#include "Programs/SilentTerminal.hpp"
#include "Programs/StandardStreams.hpp"

#include <QByteArray>

#include <cerrno>
#include <cstdio>
#include <sys/select.h>
#include <unistd.h>

namespace Varnholt::Host::Prompt {

namespace {

void Ask(QString const& p_Question)
{
    Programs::StandardStreams::Write(stderr, Programs::Printable(p_Question));
}

/// Waits for input. \return false when a signal came instead. A blocking read would miss a signal
/// that comes just before it, or to another thread.
bool WaitForInput()
{
    constexpr int c_LookMicroseconds = 50'000;

    while (!SignalWatch::IsEndRequested()) {
        fd_set input;
        FD_ZERO(&input);
        FD_SET(STDIN_FILENO, &input);
        timeval moment{0, c_LookMicroseconds};
        int const ready = ::select(STDIN_FILENO + 1, &input, nullptr, nullptr, &moment);
        if (ready > 0 || (ready < 0 && errno != EINTR))
            return true;
    }
    return false;
}

/// Byte by byte: what follows the line is left for the next program that reads this input.
std::optional<QString> ReadLine()
{
    QByteArray line;
    char byte = 0;
    ssize_t read = -1;
    while (WaitForInput()) {
        read = ::read(STDIN_FILENO, &byte, 1);
        if (read < 0 && errno == EINTR)
            continue;
        if (read != 1 || byte == '\n')
            break;
        line += byte;
    }
    if (SignalWatch::IsEndRequested())
        return std::nullopt;
    if (read < 0 || (read == 0 && line.isEmpty()))
        return std::nullopt;
    if (line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

} // namespace

bool IsInteractive()
{
    return ::isatty(STDIN_FILENO) == 1;
}

bool Confirm(QString const& p_Question)
{
    Ask(p_Question + QStringLiteral(" [y/N] "));
    std::optional<QString> const line = ReadLine();
    if (!line)
        std::fputc('\n', stderr); // the question's line was not ended by an answer
    return OptionText::YesOrNo(line.value_or(QString()).trimmed()).value_or(false);
}

std::optional<QString> Password(QString const& p_Question)
{
    if (!IsInteractive())
        return ReadLine();
    Programs::SilentTerminal const silence;
    Ask(p_Question);
    return ReadLine();
}

} // namespace Varnholt::Host::Prompt
