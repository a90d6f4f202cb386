#include "Host/Cli/MessageLog.hpp"

#include "Host/Cli/Console.hpp"

namespace Varnholt::Host {

namespace {

Console* g_Console = nullptr;
bool g_Verbose = false;

void Handle(QtMsgType p_Type, QMessageLogContext const& p_Context, QString const& p_Text)
{
    if (!g_Verbose && p_Type != QtCriticalMsg && p_Type != QtFatalMsg)
        return;
    g_Console->Log(QStringLiteral("[%1] %2").arg(
        QLatin1String(p_Context.category == nullptr ? "default" : p_Context.category), p_Text));
}

} // namespace

MessageLog::MessageLog(Console& p_Console, bool p_Verbose)
    : Former(qInstallMessageHandler(nullptr))
{
    g_Console = &p_Console;
    g_Verbose = p_Verbose;
    qInstallMessageHandler(Handle);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(Former);
}

} // namespace Varnholt::Host
