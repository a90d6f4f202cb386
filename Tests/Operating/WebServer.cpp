#include "Tests/Operating/WebServer.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTcpSocket>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_WaitMilliseconds = 30000;
constexpr int c_LookMilliseconds = 10;
/// Another program may take a free port before the server does.
constexpr int c_Attempts = 5;

quint16 FreePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

bool Connects(quint16 p_Port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(QHostAddress::LocalHost), p_Port);
    return socket.waitForConnected(c_WaitMilliseconds);
}

} // namespace

WebServer::WebServer(QString p_Program, QString p_File, Replacements p_Replacements)
    : Program(std::move(p_Program))
    , File(std::move(p_File))
    , Examples(std::move(p_Replacements))
{
}

WebServer::~WebServer()
{
    Stop();
}

void WebServer::Start()
{
    for (int i = 0; i < c_Attempts; ++i) {
        ListenPort = FreePort();
        WriteConfiguration();
        if (Run())
            return;
    }
    qFatal("%s does not start: %s", qPrintable(Program), ReadFile(Place("error.log")).constData());
}

void WebServer::Stop()
{
    if (Process.state() == QProcess::NotRunning)
        return;
    Process.terminate();
    if (!Process.waitForFinished(c_WaitMilliseconds))
        Process.kill();
    Process.waitForFinished(c_WaitMilliseconds);
}

void WebServer::WriteConfiguration() const
{
    QString text = QString::fromUtf8(ReadFile(QDir(VARNHOLT_DOCUMENTS).filePath(File)));
    Replacements replacements = Examples;
    for (auto const& replacement : ListenReplacements())
        replacements.push_back(replacement);
    for (auto const& [example, real] : replacements) {
        if (!text.contains(example))
            qFatal("the configuration does not hold %s", qPrintable(example));
        text.replace(example, real);
    }
    if (!WriteFile(Place("configuration"), Complete(text).toUtf8()))
        qFatal("the configuration cannot be written");
}

bool WebServer::Run()
{
    Process.setStandardErrorFile(Place("error.log"));
    Process.start(Program, Arguments(Place("configuration")));
    QDeadlineTimer const deadline(c_WaitMilliseconds);
    while (!deadline.hasExpired() && Process.state() != QProcess::NotRunning) {
        if (HasItsPort())
            return Connects(ListenPort);
        Process.waitForFinished(c_LookMilliseconds);
    }
    Stop();
    return false;
}

} // namespace Varnholt::TestSupport
