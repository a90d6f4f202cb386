#include "Host/Core/Session/MessageLog.hpp"

#include "Programs/Printable.hpp"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QReadWriteLock>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace Varnholt::Host {

namespace {

// The handler is a plain function. Recursive: who is told of a message may log one in turn.
QReadWriteLock g_LogLock(QReadWriteLock::Recursive);
MessageLog* g_Log = nullptr;
QMutex g_FileMutex;
QFile g_File;

/// The owner's alone: a log holds file names, accounts and servers.
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
    return g_File.open(file, QIODevice::WriteOnly | QIODevice::Append,
                       QFileDevice::AutoCloseHandle);
}

void Append(QString const& p_Line)
{
    QMutexLocker const lock(&g_FileMutex);
    if (!g_File.isOpen())
        return;
    QString const time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    g_File.write((time + QLatin1Char(' ') + Programs::Printable(p_Line)).toUtf8() + '\n');
    g_File.flush();
}

} // namespace

MessageLog::MessageLog(QString const& p_File, std::shared_ptr<AddressNames const> p_Names,
                       QObject* p_Parent)
    : QObject(p_Parent)
    , Names(std::move(p_Names))
{
    qRegisterMetaType<LogEntry>("Varnholt::Host::LogEntry");
    if (!p_File.isEmpty() && !OpenForOwner(p_File))
        WhyNot = qt_error_string(errno);
    {
        QWriteLocker const lock(&g_LogLock);
        g_Log = this;
    }
    Former = qInstallMessageHandler(Handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(Former);
    QWriteLocker const lock(&g_LogLock); // behind the last one who still says something
    g_Log = nullptr;
    g_File.close();
}

void MessageLog::Handle(QtMsgType p_Type, QMessageLogContext const& p_Context,
                        QString const& p_Text)
{
    QReadLocker const lock(&g_LogLock);
    if (g_Log == nullptr)
        return;
    LogEntry const entry{
        p_Type, QLatin1String(p_Context.category == nullptr ? "default" : p_Context.category),
        g_Log->Names->Replace(p_Text)};
    Append(entry.Line());
    Q_EMIT g_Log->Logged(entry);
}

void MessageLog::Write(QString const& p_Text)
{
    Append(QStringLiteral("[varnholt.host] ") + p_Text);
}

} // namespace Varnholt::Host
