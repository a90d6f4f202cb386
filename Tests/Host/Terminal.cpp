#include "Tests/Host/Terminal.hpp"

#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDeadlineTimer>
#include <QProcessEnvironment>
#include <QRegularExpression>

#include <array>
#include <csignal>
#include <poll.h>
#ifdef Q_OS_MACOS
#include <util.h>
#else
#include <pty.h>
#endif
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Rows = 24;

/// Null-terminated, for exec.
class Texts {
public:
    explicit Texts(QStringList const& p_Texts)
    {
        for (QString const& text : p_Texts)
            Bytes.push_back(text.toUtf8());
        for (QByteArray& text : Bytes)
            Pointers.push_back(text.data());
        Pointers.push_back(nullptr);
    }
    char* const* Data() const { return Pointers.data(); }

private:
    std::vector<QByteArray> Bytes;
    std::vector<char*> Pointers;
};

QStringList EnvironmentOf(HostGame const& p_Game, QMap<QString, QString> const& p_Variables)
{
    QProcessEnvironment environment = HostProcess::Environment(p_Game);
    environment.insert("TERM", "xterm-256color");
    for (auto variable = p_Variables.begin(); variable != p_Variables.end(); ++variable)
        if (variable.value().isNull())
            environment.remove(variable.key());
        else
            environment.insert(variable.key(), variable.value());
    return environment.toStringList();
}

winsize SizeOf(int p_Columns)
{
    winsize size{};
    size.ws_col = static_cast<unsigned short>(p_Columns);
    size.ws_row = c_Rows;
    return size;
}

} // namespace

Terminal::Terminal(HostGame const& p_Game, QStringList const& p_Arguments,
                   QMap<QString, QString> const& p_Variables, int p_Columns)
{
    // Everything is made ready before: after the fork only exec may follow.
    Texts const arguments(QStringList(HostProcess::Program()) + HostProcess::Options(p_Game) +
                          p_Arguments);
    Texts const environment(EnvironmentOf(p_Game, p_Variables));
    winsize size = SizeOf(p_Columns);
    Process = ::forkpty(&Master, nullptr, nullptr, &size);
    if (Process < 0)
        qFatal("there is no terminal");
    if (Process == 0) {
        ::execve(arguments.Data()[0], arguments.Data(), environment.Data());
        ::_exit(127);
    }
}

Terminal::~Terminal()
{
    if (Process > 0) {
        ::kill(Process, SIGKILL);
        ::waitpid(Process, nullptr, 0);
    }
    ::close(Master);
}

void Terminal::Type(QByteArray const& p_Keys) const
{
    if (::write(Master, p_Keys.constData(), static_cast<std::size_t>(p_Keys.size())) !=
        p_Keys.size())
        qFatal("nothing can be typed");
}

void Terminal::Resize(int p_Columns) const
{
    winsize const size = SizeOf(p_Columns);
    ::ioctl(Master, TIOCSWINSZ, &size);
}

bool Terminal::Echoes() const
{
    termios state{};
    return ::tcgetattr(Master, &state) == 0 && (state.c_lflag & ECHO) != 0;
}

/// Takes what has been drawn within a moment. \return false once nothing holds the terminal open
bool Terminal::Read()
{
    constexpr int c_LookMilliseconds = 10;

    pollfd look{Master, POLLIN, 0};
    if (::poll(&look, 1, c_LookMilliseconds) <= 0)
        return true;
    std::array<char, 4096> buffer;
    ssize_t const size = ::read(Master, buffer.data(), buffer.size());
    if (size <= 0)
        return false;
    Bytes.append(buffer.data(), static_cast<int>(size));
    return true;
}

bool Terminal::WaitUntil(std::function<bool()> const& p_Condition)
{
    QDeadlineTimer const deadline(TestHost::c_Timeout);
    while (!p_Condition())
        if (deadline.hasExpired() || !Read())
            return p_Condition();
    return true;
}

bool Terminal::WaitForLine(QString const& p_Text)
{
    return WaitUntil([&] { return Screen().last().contains(p_Text); });
}

int Terminal::Finish()
{
    QDeadlineTimer const deadline(TestHost::c_Timeout);
    while (Read())
        if (deadline.hasExpired())
            qFatal("varnholt-host does not end; it has drawn: %s", Bytes.constData());
    int status = 0;
    ::waitpid(Process, &status, 0);
    Process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

QStringList Terminal::Screen() const
{
    static QRegularExpression const s_Token("\x1b\\[[0-9;]*[A-Za-z]|[\r\n]|[^\x1b\r\n]");
    QStringList lines{QString()};
    int column = 0;
    auto tokens = s_Token.globalMatch(QString::fromUtf8(Bytes));
    while (tokens.hasNext()) {
        QString const token = tokens.next().captured();
        QString& line = lines.last();
        if (token == "\r") {
            column = 0;
        } else if (token == "\n") {
            lines += QString();
        } else if (token.endsWith('K') && token.size() > 1) {
            line.truncate(column);
        } else if (token.size() == 1) {
            line = line.leftJustified(column);
            line.replace(column++, 1, token);
        }
    }
    for (QString& line : lines)
        while (line.endsWith(' '))
            line.chop(1);
    return lines;
}

} // namespace Varnholt::TestSupport
