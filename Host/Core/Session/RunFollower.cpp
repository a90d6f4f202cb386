#include "Host/Core/Session/RunFollower.hpp"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Varnholt::Host {

namespace {

constexpr int c_WaitMilliseconds = 3'000;
constexpr int c_LookMilliseconds = 1'000;

/// Anybody can create a file in the socket's folder: only the user's own socket is spoken to.
bool IsOwn(QString const& p_Path)
{
    struct stat found = {};
    return ::lstat(QFile::encodeName(p_Path).constData(), &found) == 0 && S_ISSOCK(found.st_mode) &&
           found.st_uid == ::geteuid();
}

bool Say(QLocalSocket& p_Socket, QString const& p_Folder, ControlMessage const& p_Message)
{
    QString const path = ControlLine::SocketOf(p_Folder);
    if (!IsOwn(path))
        return false;
    p_Socket.connectToServer(path);
    if (!p_Socket.waitForConnected(c_WaitMilliseconds))
        return false;
    p_Socket.write(ControlLine::Of(p_Message));
    p_Socket.flush();
    return true;
}

/// Without the end when it does not come in time.
QByteArray LineFrom(QLocalSocket& p_Socket, int p_Milliseconds)
{
    while (!p_Socket.canReadLine() && p_Socket.waitForReadyRead(p_Milliseconds))
        continue;
    return p_Socket.readLine();
}

QJsonObject ObjectIn(QByteArray const& p_Line)
{
    return QJsonDocument::fromJson(p_Line).object();
}

} // namespace

RunFollower::RunFollower(QObject* p_Parent)
    : QObject(p_Parent)
    , Socket(this)
{
    // Queued, so that nobody hears of a run before `Follow` has returned.
    connect(
        &Socket, &QLocalSocket::readyRead, this, [this] { Read(); }, Qt::QueuedConnection);
    connect(
        &Socket, &QLocalSocket::disconnected, this, [this] { OnGone(); }, Qt::QueuedConnection);
}

bool RunFollower::Send(QStringList const& p_Folders, ControlMessage const& p_Message)
{
    int const patience = p_Message.Kind == ControlMessage::Type::Pause ? -1 : c_WaitMilliseconds;
    bool isTaken = false;
    for (QString const& folder : p_Folders) {
        QLocalSocket socket;
        if (Say(socket, folder, p_Message) && LineFrom(socket, patience) == "ok\n")
            isTaken = true;
    }
    return isTaken;
}

std::optional<RunningHost> RunFollower::Look(QString const& p_Folder)
{
    QLocalSocket socket;
    if (!Say(socket, p_Folder, {ControlMessage::Type::Look, 0}))
        return std::nullopt;
    QJsonObject const object = ObjectIn(LineFrom(socket, c_LookMilliseconds));
    qint64 const process = static_cast<qint64>(object[QLatin1String("process")].toDouble());
    if (process <= 0)
        return std::nullopt;
    return RunningHost{process, ControlLine::SnapshotIn(object)};
}

bool RunFollower::Follow(QStringList const& p_Folders)
{
    auto const folder =
        std::find_if(p_Folders.begin(), p_Folders.end(), [this](QString const& p_Folder) {
            return Say(Socket, p_Folder, {ControlMessage::Type::Follow, 0});
        });
    if (folder == p_Folders.end())
        return false;
    Folder = *folder;
    return true;
}

void RunFollower::Read()
{
    while (!HasEnded && Socket.canReadLine()) {
        QJsonObject const object = ObjectIn(Socket.readLine());
        HasEnded = object.contains(QLatin1String("end"));
        if (HasEnded)
            Q_EMIT Ended(ControlLine::ResultIn(object), object[QLatin1String("game")].toString());
        else
            Q_EMIT Progressed(ControlLine::SnapshotIn(object));
    }
}

void RunFollower::OnGone()
{
    Read();
    if (std::exchange(HasEnded, true))
        return;
    RunResult result;
    result.Problem = Failure{FailureKind::RunLost, Folder, {}};
    Q_EMIT Ended(result, {});
}

} // namespace Varnholt::Host
