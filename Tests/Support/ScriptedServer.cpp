#include "Tests/Support/ScriptedServer.hpp"

#include "Tests/Support/ServerConnection.hpp"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <algorithm>
#include <atomic>

namespace Varnholt::TestSupport {

class ScriptedServer::Listener : public QTcpServer {
public:
    explicit Listener(ServerScript& p_Script)
        : Script(p_Script)
    {
        Clock.start();
        connect(this, &QTcpServer::newConnection, this, [this] { Accept(); });
    }

    void RetryAll()
    {
        for (ServerConnection* const connection : findChildren<ServerConnection*>())
            connection->Retry();
    }

    std::atomic<int> Open{0};

private:
    void Accept()
    {
        while (QTcpSocket* const socket = nextPendingConnection()) {
            ++Open;
            auto* const connection = new ServerConnection(*socket, Script, Clock, ++Numbers, this);
            connect(connection, &QObject::destroyed, this, [this] { --Open; });
        }
    }

    ServerScript& Script;
    QElapsedTimer Clock;
    int Numbers = 0;
};

struct ScriptedServer::Core {
    ServerScript Script;
    QThread Thread;
    Listener* Server = nullptr; ///< lives on the thread
    QString Address;
    quint16 Port = 0;
    QByteArray AsDefault; ///< what it has put into the environment

    /// Runs a closure on the server's thread and waits for it.
    template <typename Closure>
    void OnThread(Closure p_Closure)
    {
        QMetaObject::invokeMethod(Server, p_Closure, Qt::BlockingQueuedConnection);
    }
};

ScriptedServer::PathScript& ScriptedServer::PathScript::Then(Answer const& p_Answer)
{
    Server.Inner->Script.Append(Path, p_Answer);
    return *this;
}

ScriptedServer::PathScript& ScriptedServer::PathScript::Then(Answer const& p_Answer, int p_Times)
{
    for (int i = 0; i < p_Times; ++i)
        Then(p_Answer);
    return *this;
}

void ScriptedServer::PathScript::Always(Answer const& p_Answer)
{
    Server.Inner->Script.SetForever(Path, p_Answer);
}

ScriptedServer::ScriptedServer(QString const& p_Address)
    : Inner(std::make_unique<Core>())
{
    // Qt asks them for loopback addresses too.
    for (char const* const proxy : {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"})
        qunsetenv(proxy);
    Inner->Address = p_Address;
    Inner->Server = new Listener(Inner->Script);
    Inner->Server->moveToThread(&Inner->Thread);
    QObject::connect(&Inner->Thread, &QThread::finished, Inner->Server, &QObject::deleteLater);
    Inner->Thread.start();
    Inner->OnThread([this] {
        if (!Inner->Server->listen(QHostAddress(Inner->Address)))
            qFatal("no port to listen on at %s", qPrintable(Inner->Address));
        Inner->Port = Inner->Server->serverPort();
    });
}

ScriptedServer::~ScriptedServer()
{
    if (!Inner->AsDefault.isEmpty() && qgetenv("VARNHOLT_CONTENT_BASE_URL") == Inner->AsDefault)
        qunsetenv("VARNHOLT_CONTENT_BASE_URL");
    Inner->Thread.quit();
    Inner->Thread.wait();
}

QString ScriptedServer::Host() const
{
    return Inner->Address + QLatin1Char(':') + QString::number(Inner->Port);
}

QString ScriptedServer::BaseUrl() const
{
    return QStringLiteral("http://") + Host() + QLatin1Char('/');
}

QString ScriptedServer::Url(QString const& p_Path) const
{
    return QStringLiteral("http://") + Host() + p_Path;
}

QString ScriptedServer::RefusingUrl(QString const& p_Path)
{
    // Bound but not listening: nobody else can be given the port meanwhile.
    static QTcpSocket* const s_Bound = [] {
        auto* const socket = new QTcpSocket;
        socket->bind(QHostAddress(QHostAddress::LocalHost));
        return socket;
    }();
    return QStringLiteral("http://127.0.0.1:%1").arg(s_Bound->localPort()) + p_Path;
}

void ScriptedServer::BecomeDefaultContentServer()
{
    Inner->AsDefault = BaseUrl().toUtf8();
    qputenv("VARNHOLT_CONTENT_BASE_URL", Inner->AsDefault);
}

void ScriptedServer::Serve(QString const& p_Path, QByteArray const& p_Bytes)
{
    Inner->Script.Serve(p_Path, p_Bytes);
}

void ScriptedServer::Remove(QString const& p_Path)
{
    Inner->Script.Remove(p_Path);
}

ScriptedServer::PathScript ScriptedServer::Script(QString const& p_Path)
{
    return {*this, p_Path};
}

void ScriptedServer::ClearScript(QString const& p_Path)
{
    Inner->Script.ClearRule(p_Path);
}

void ScriptedServer::OpenGate(QString const& p_Path, int p_Times)
{
    Inner->Script.OpenGate(p_Path, p_Times);
    Inner->OnThread([this] { Inner->Server->RetryAll(); });
}

std::vector<RecordedRequest> ScriptedServer::Requests() const
{
    return Inner->Script.Requests();
}

std::vector<RecordedRequest> ScriptedServer::Requests(QString const& p_Path) const
{
    std::vector<RecordedRequest> requests = Requests();
    requests.erase(std::remove_if(requests.begin(), requests.end(),
                                  [&](auto const& p_Request) { return p_Request.Path != p_Path; }),
                   requests.end());
    return requests;
}

int ScriptedServer::Count(QString const& p_Path) const
{
    return static_cast<int>(Requests(p_Path).size());
}

int ScriptedServer::ScriptedAnswers(QString const& p_Path) const
{
    return Inner->Script.ScriptedAnswers(p_Path);
}

qint64 ScriptedServer::BodyBytes(QString const& p_Path) const
{
    return Inner->Script.BodyBytes(p_Path);
}

int ScriptedServer::AnswersNow(QByteArray const& p_Method) const
{
    return Inner->Script.AnswersNow(p_Method);
}

int ScriptedServer::MostAnswers(QByteArray const& p_Method) const
{
    return Inner->Script.MostAnswers(p_Method);
}

int ScriptedServer::OpenConnections() const
{
    return Inner->Server->Open;
}

void ScriptedServer::Stop()
{
    Inner->OnThread([this] {
        Inner->Server->close();
        qDeleteAll(Inner->Server->findChildren<ServerConnection*>());
    });
}

void ScriptedServer::Restart()
{
    Inner->OnThread([this] {
        if (!Inner->Server->listen(QHostAddress(Inner->Address), Inner->Port))
            qFatal("port %d is taken", Inner->Port);
    });
}

} // namespace Varnholt::TestSupport
