#include "Host/Core/ControlSocket.hpp"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

namespace Varnholt::Host {

namespace {

constexpr int c_WaitMilliseconds = 3'000;
constexpr int c_LongestWord = 16;

QByteArray Text(ControlSocket::Word p_Word)
{
    return p_Word == ControlSocket::Word::Pause ? "pause\n" : "resume\n";
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
        QCryptographicHash::hash(p_SettingsFile.toUtf8(), QCryptographicHash::Sha256).toHex();
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
        if (p_Client.bytesAvailable() > c_LongestWord)
            p_Client.abort();
        return;
    }
    QByteArray const line = p_Client.readLine(c_LongestWord);
    bool known = false;
    for (Word const word : {Word::Pause, Word::Resume})
        if (line == Text(word)) {
            known = true;
            Q_EMIT Received(word);
        }
    p_Client.write(known ? "ok\n" : "unknown\n");
    p_Client.disconnectFromServer();
}

std::optional<Failure> ControlSocket::Send(QString const& p_SettingsFile, Word p_Word)
{
    Failure const nobody{FailureKind::NothingRunning, p_SettingsFile, {}};
    QLocalSocket socket;
    socket.connectToServer(Name(p_SettingsFile));
    if (!socket.waitForConnected(c_WaitMilliseconds))
        return nobody;
    socket.write(Text(p_Word));
    while (!socket.canReadLine() && socket.waitForReadyRead(c_WaitMilliseconds))
        continue;
    return socket.readLine() == "ok\n" ? std::nullopt : std::optional<Failure>(nobody);
}

} // namespace Varnholt::Host
