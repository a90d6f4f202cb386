#include "Host/Cli/MessageLog.hpp"

#include "Host/Cli/Console.hpp"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>

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

void Handle(QtMsgType p_Type, QMessageLogContext const& p_Context, QString const& p_Text)
{
    QString const line = QStringLiteral("[%1] %2").arg(
        QLatin1String(p_Context.category == nullptr ? "default" : p_Context.category),
        g_Sink.Names->Replace(p_Text));
    {
        QMutexLocker const lock(&g_Sink.FileMutex);
        if (g_Sink.File.isOpen()) {
            QString const time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
            g_Sink.File.write((time + QLatin1Char(' ') + line + QLatin1Char('\n')).toUtf8());
            g_Sink.File.flush();
        }
    }
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
    g_Sink.File.setFileName(p_File);
    if (!p_File.isEmpty() && !g_Sink.File.open(QIODevice::WriteOnly | QIODevice::Append))
        p_Console.Note(QStringLiteral("The log file %1 cannot be written (%2).")
                           .arg(p_File, g_Sink.File.errorString()));
    qInstallMessageHandler(Handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(Former);
    g_Sink.File.close();
}

} // namespace Varnholt::Host
