#include "Host/Cli/MessageLog.hpp"

#include "Host/Cli/Console.hpp"
#include "Programs/Printable.hpp"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace Varnholt::Host {

namespace {

/// What the handler, a plain function, works with.
struct Sink {
    Console* Output = nullptr;
    std::shared_ptr<AddressNames const> Names;
    bool Verbose = false;
    QMutex FileMutex;
    QFile File;
};

Sink g_Sink;

/// A log tells what is nobody else's business: file names, accounts, servers.
bool OpenForOwner(QString const& p_File)
{
    constexpr mode_t c_OwnersAlone = S_IRUSR | S_IWUSR;

    int const file = ::open(QFile::encodeName(p_File).constData(),
                            O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, c_OwnersAlone);
    struct stat found = {};
    if (file < 0)
        return false;
    if (::fstat(file, &found) == 0 && S_ISREG(found.st_mode)) // and no device
        ::fchmod(file, c_OwnersAlone);
    return g_Sink.File.open(file, QIODevice::WriteOnly | QIODevice::Append,
                            QFileDevice::AutoCloseHandle);
}

void Append(QString const& p_Line)
{
    QMutexLocker const lock(&g_Sink.FileMutex);
    if (!g_Sink.File.isOpen())
        return;
    QString const time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    g_Sink.File.write((time + QLatin1Char(' ') + Programs::Printable(p_Line)).toUtf8() + '\n');
    g_Sink.File.flush();
}

void Handle(QtMsgType p_Type, QMessageLogContext const& p_Context, QString const& p_Text)
{
    QString const line = QStringLiteral("[%1] %2").arg(
        QLatin1String(p_Context.category == nullptr ? "default" : p_Context.category),
        g_Sink.Names->Replace(p_Text));
    Append(line);
    if (g_Sink.Verbose || p_Type == QtCriticalMsg || p_Type == QtFatalMsg)
        g_Sink.Output->Log(line);
}

} // namespace

MessageLog::MessageLog(Console& p_Console, bool p_Verbose, QString const& p_File,
                       std::shared_ptr<AddressNames const> p_Names)
    : Former(qInstallMessageHandler(nullptr))
{
    g_Sink.Output = &p_Console;
    g_Sink.Names = std::move(p_Names);
    g_Sink.Verbose = p_Verbose;
    if (!p_File.isEmpty() && !OpenForOwner(p_File))
        p_Console.Note(QStringLiteral("The log file %1 cannot be written (%2).")
                           .arg(p_File, qt_error_string(errno)));
    qInstallMessageHandler(Handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(Former);
    g_Sink.File.close();
}

void MessageLog::Write(QString const& p_Text)
{
    Append(QStringLiteral("[varnholt.host] ") + p_Text);
}

} // namespace Varnholt::Host
