#include "Tests/Operating/NginxServer.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTcpSocket>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_WaitMilliseconds = 30000;
constexpr int c_LookMilliseconds = 10;
/// Another program may take a free port before nginx does.
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

NginxServer::NginxServer(QString const& p_File, Replacements const& p_Replacements)
{
    QString const file = QStringLiteral(VARNHOLT_SOURCE_FOLDER "/docs/nginx/") + p_File;
    for (int i = 0; i < c_Attempts; ++i) {
        ListenPort = FreePort();
        WriteConfiguration(QString::fromUtf8(ReadFile(file)), p_Replacements);
        if (Start())
            return;
    }
    qFatal("nginx does not start: %s", ReadFile(Folder.filePath("error.log")).constData());
}

NginxServer::~NginxServer()
{
    Stop();
}

void NginxServer::Stop()
{
    if (Process.state() == QProcess::NotRunning)
        return;
    Process.terminate();
    if (!Process.waitForFinished(c_WaitMilliseconds))
        Process.kill();
    Process.waitForFinished(c_WaitMilliseconds);
}

void NginxServer::WriteConfiguration(QString p_Text, Replacements const& p_Replacements) const
{
    Replacements replacements = p_Replacements;
    replacements.emplace_back("listen 80;", QStringLiteral("listen 127.0.0.1:%1;").arg(ListenPort));
    for (auto const& [example, real] : replacements) {
        if (!p_Text.contains(example))
            qFatal("the configuration does not hold %s", qPrintable(example));
        p_Text.replace(example, real);
    }
    QString main = QStringLiteral("%1daemon off;\npid PLACE/pid;\nerror_log PLACE/error.log;\n"
                                  "events {}\nhttp {\naccess_log off;\n")
                       .arg(QLatin1String(IsRoot() ? "user root;\n" : ""));
    for (char const* const name : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        main += QStringLiteral("%1_temp_path PLACE/temp;\n").arg(QLatin1String(name));
    main.replace("PLACE", Folder.path());
    if (!WriteFile(Folder.filePath("nginx.conf"), (main + p_Text + "}\n").toUtf8()))
        qFatal("the configuration cannot be written");
}

bool NginxServer::Start()
{
    Process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    Process.start(QStringLiteral(VARNHOLT_NGINX_FILE),
                  {"-p", Folder.path(), "-c", Folder.filePath("nginx.conf"), "-e",
                   Folder.filePath("error.log")});
    QDeadlineTimer const deadline(c_WaitMilliseconds);
    while (!deadline.hasExpired() && Process.state() != QProcess::NotRunning) {
        // Written once the port is its own.
        if (!ReadFile(Folder.filePath("pid")).isEmpty())
            return Connects(ListenPort);
        Process.waitForFinished(c_LookMilliseconds);
    }
    return false;
}

} // namespace Varnholt::TestSupport
