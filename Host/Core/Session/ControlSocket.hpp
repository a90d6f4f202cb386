#pragma once

#include "Host/Core/Session/ControlLine.hpp"

#include <QLocalServer>
#include <QObject>
#include <QPointer>

#include <vector>

class QLocalSocket;

namespace Varnholt::Host {

/// Lets the user's other programs find, follow and steer the run in a game folder. A message per
/// connection: one that steers is answered by "ok" once it holds. A follower that reads too slowly
/// misses lines and does not hold the run up. Other users' programs do not get through.
class ControlSocket : public QObject {
    Q_OBJECT

public:
    explicit ControlSocket(QObject* p_Parent = nullptr);

    /// Takes messages for this folder from now on, and takes the place of whoever did before: only
    /// for the holder of its `FolderLock`. \return false when the system does not allow it
    bool Listen(QString const& p_Folder, QString const& p_Game);
    /// Tells how the run stands, also those who have asked for a pause, once it holds.
    void Show(RunSnapshot const& p_Snapshot);
    /// Tells those who have asked for a pause that it was taken back.
    void TellResumed();
    /// Tells how the run has ended and takes no more messages.
    void End(RunResult const& p_Result);

Q_SIGNALS:
    /// To pause, to resume, or to limit the rate.
    void Received(Varnholt::Host::ControlMessage p_Message);

private:
    using Clients = std::vector<QPointer<QLocalSocket>>;

    void OnConnection();
    void Answer(QLocalSocket& p_Client);
    void AnswerPauses(char const* p_Answer);
    QByteArray LatestLine() const;

    QLocalServer Server;
    RunSnapshot Latest;
    QString Game;
    Clients AwaitHold;
    Clients Followers;
};

} // namespace Varnholt::Host
