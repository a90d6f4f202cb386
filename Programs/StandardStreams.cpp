#include "Programs/StandardStreams.hpp"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Varnholt::Programs::StandardStreams {

namespace {

std::atomic<int> g_Error{0}; ///< the first one of standard output

} // namespace

void Prepare()
{
    // Opened for the other direction, so that using it fails as it did while it was closed.
    constexpr int c_Modes[] = {O_WRONLY, O_RDONLY, O_RDONLY};

    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", c_Modes[stream]); // gets the lowest free number, which is `stream`
    std::signal(SIGPIPE, SIG_IGN);
}

void Write(std::FILE* p_Stream, QString const& p_Text)
{
    QByteArray const bytes = p_Text.toUtf8();
    auto const size = static_cast<std::size_t>(bytes.size());
    bool const isWritten = std::fwrite(bytes.constData(), 1, size, p_Stream) == size;
    int none = 0;
    if ((std::fflush(p_Stream) != 0 || !isWritten) && p_Stream == stdout)
        g_Error.compare_exchange_strong(none, errno);
}

QString WhyLost()
{
    return g_Error == 0 ? QString() : qt_error_string(g_Error);
}

} // namespace Varnholt::Programs::StandardStreams
