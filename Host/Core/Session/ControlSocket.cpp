#include "Host/Core/Session/ControlSocket.hpp"

#include <QCoreApplication>
#include <QLocalSocket>

#include <utility>

namespace Varnholt::Host {

namespace {

void Dismiss(QLocalSocket& p_Client, QByteArray const& p_Answer)
{
    p_Client.write(p_Answer);
    p_Client.flush(); // this program may end at once
    p_Client.disconnectFromServer();
}

} // namespace

ControlSocket::ControlSocket(QObject* p_Parent)
    : QObject(p_Parent)
    , Server(this)
{
    Server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&Server, &QLocalServer::newConnection, this, [this] { OnConnection(); });
}

bool ControlSocket::Listen(QString const& p_Folder, QString const& p_Game)
{
    Latest = {};
    Latest.Phase = RunPhase::Connecting;
    Game = p_Game;
    QString const path = ControlLine::SocketOf(p_Folder);
    QLocalServer::removeServer(path); // what a program that was killed has left behind
    return Server.listen(path);
}

void ControlSocket::OnConnection()
{
    while (QLocalSocket* const client = Server.nextPendingConnection()) {
        client->setParent(this);
        client->setReadBufferSize(ControlLine::c_LongestMessage);
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        connect(client, &QLocalSocket::readyRead, this, [this, client] { Answer(*client); });
    }
}

void ControlSocket::Answer(QLocalSocket& p_Client)
{
    if (!p_Client.canReadLine()) {
        if (p_Client.bytesAvailable() >= ControlLine::c_LongestMessage)
            p_Client.abort();
        return;
    }
    p_Client.disconnect(this); // what comes behind the message is not read
    auto const message = ControlLine::MessageIn(p_Client.readLine());
    if (!message)
        return Dismiss(p_Client, "unknown\n");
    switch (message->Kind) {
    case ControlMessage::Type::Look:
        return Dismiss(p_Client, LatestLine());
    case ControlMessage::Type::Follow:
        p_Client.write(LatestLine());
        Followers.emplace_back(&p_Client);
        return;
    case ControlMessage::Type::Pause:
        AwaitHold.emplace_back(&p_Client);
        if (Latest.IsHeld)
            AnswerPauses("ok\n");
        break;
    case ControlMessage::Type::Resume:
    case ControlMessage::Type::LimitRate:
        Dismiss(p_Client, "ok\n");
        break;
    }
    Q_EMIT Received(*message);
}

void ControlSocket::AnswerPauses(char const* p_Answer)
{
    for (QPointer<QLocalSocket> const& client : std::exchange(AwaitHold, {}))
        if (client)
            Dismiss(*client, p_Answer);
}

QByteArray ControlSocket::LatestLine() const
{
    QJsonObject object = ControlLine::ObjectOf(Latest);
    object.insert(QStringLiteral("process"), QCoreApplication::applicationPid());
    return ControlLine::Of(object);
}

void ControlSocket::Show(RunSnapshot const& p_Snapshot)
{
    constexpr qint64 c_MostBytes = qint64{64} * 1024; // that wait for one who follows

    Latest = p_Snapshot;
    if (Latest.IsHeld)
        AnswerPauses("ok\n");
    if (Followers.empty())
        return;
    QByteArray const line = LatestLine();
    for (QPointer<QLocalSocket> const& client : Followers)
        if (client && client->bytesToWrite() < c_MostBytes)
            client->write(line);
}

void ControlSocket::TellResumed()
{
    Latest.IsHeld = false; // until the module says so again
    AnswerPauses("resumed\n");
}

void ControlSocket::End(RunResult const& p_Result)
{
    Server.close();
    AnswerPauses("ended\n");
    QJsonObject end = ControlLine::EndOf(p_Result);
    end.insert(QStringLiteral("game"), Game);
    for (QPointer<QLocalSocket> const& client : std::exchange(Followers, {}))
        if (client)
            Dismiss(*client, ControlLine::Of(end));
}

} // namespace Varnholt::Host
