#include "Host/Core/Session/ControlSocket.hpp"

#include "Host/Core/Settings/SettingsFile.hpp"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

#include <utility>

namespace Varnholt::Host {

namespace {

constexpr int c_WaitMilliseconds = 3'000;
constexpr int c_LongestLine = 32;
QByteArray const c_Limit = QByteArrayLiteral("limit ");

QByteArray LineOf(ControlMessage const& p_Message)
{
    switch (p_Message.Kind) {
    case ControlMessage::Type::Pause:
        return "pause\n";
    case ControlMessage::Type::Resume:
        return "resume\n";
    case ControlMessage::Type::LimitRate:
        break;
    }
    return c_Limit + QByteArray::number(p_Message.BytesPerSecond) + '\n';
}

void Dismiss(QLocalSocket& p_Client, char const* p_Answer)
{
    p_Client.write(p_Answer);
    p_Client.disconnectFromServer();
}

/// \return none when the line is no message
std::optional<ControlMessage> MessageOf(QByteArray const& p_Line)
{
    ControlMessage message;
    if (p_Line.startsWith(c_Limit)) {
        message.Kind = ControlMessage::Type::LimitRate;
        message.BytesPerSecond = p_Line.mid(c_Limit.size()).chopped(1).toULongLong();
    } else if (p_Line.startsWith('r')) {
        message.Kind = ControlMessage::Type::Resume;
    }
    // Only the one way to write it: numbers are read with signs and blanks too.
    return LineOf(message) == p_Line ? std::optional(message) : std::nullopt;
}

} // namespace

ControlSocket::ControlSocket(QString const& p_SettingsFile, QObject* p_Parent)
    : QObject(p_Parent)
    , Path(Name(p_SettingsFile))
{
    Server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&Server, &QLocalServer::newConnection, this, [this] { OnConnection(); });
}

QString ControlSocket::Name(QString const& p_SettingsFile)
{
    constexpr int c_Digits = 16;

    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    QByteArray const digest =
        QCryptographicHash::hash(SettingsFile::Canonical(p_SettingsFile).toUtf8(),
                                 QCryptographicHash::Sha256)
            .toHex();
    return folder + QStringLiteral("/varnholt-host-") + QString::fromLatin1(digest.left(c_Digits));
}

bool ControlSocket::Listen()
{
    // A server with access options takes a name over from the one that listens there.
    QLocalSocket probe;
    probe.connectToServer(Path);
    if (probe.waitForConnected(c_WaitMilliseconds))
        return false;
    QLocalServer::removeServer(Path); // what a program that was killed has left behind
    return Server.listen(Path);
}

void ControlSocket::OnConnection()
{
    while (QLocalSocket* const client = Server.nextPendingConnection()) {
        client->setParent(this);
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        connect(client, &QLocalSocket::readyRead, this, [this, client] { Answer(*client); });
    }
}

void ControlSocket::Answer(QLocalSocket& p_Client)
{
    if (!p_Client.canReadLine()) {
        if (p_Client.bytesAvailable() > c_LongestLine)
            p_Client.abort();
        return;
    }
    auto const message = MessageOf(p_Client.readLine(c_LongestLine));
    if (message && message->Kind == ControlMessage::Type::Pause)
        AwaitHold.emplace_back(&p_Client);
    else
        Dismiss(p_Client, message ? "ok\n" : "unknown\n");
    if (message)
        Q_EMIT Received(*message);
}

void ControlSocket::TellPause(bool p_Holds)
{
    for (QPointer<QLocalSocket> const& client : std::exchange(AwaitHold, {}))
        if (client)
            Dismiss(*client, p_Holds ? "ok\n" : "resumed\n");
}

std::optional<Failure> ControlSocket::Send(QString const& p_SettingsFile,
                                           ControlMessage const& p_Message)
{
    Failure const nobody{FailureKind::NothingRunning, p_SettingsFile, {}};
    QLocalSocket socket;
    socket.connectToServer(Name(p_SettingsFile));
    if (!socket.waitForConnected(c_WaitMilliseconds))
        return nobody;
    socket.write(LineOf(p_Message));
    int const patience = p_Message.Kind == ControlMessage::Type::Pause ? -1 : c_WaitMilliseconds;
    while (!socket.canReadLine() && socket.waitForReadyRead(patience))
        continue;
    return socket.readLine() == "ok\n" ? std::nullopt : std::optional<Failure>(nobody);
}

} // namespace Varnholt::Host
