#pragma once

#include "Host/Core/Session/ControlLine.hpp"

#include <QLocalSocket>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace Varnholt::Host {

/// A run of another program, seen from outside.
struct RunningHost {
    qint64 ProcessId = 0;
    RunSnapshot Snapshot;
};

/// Follows the run that another program of the same user is at in a game folder. The run is none
/// the worse for it, and goes on when this ends.
class RunFollower : public QObject {
    Q_OBJECT

public:
    explicit RunFollower(QObject* p_Parent = nullptr);

    /// Follows the one run in these folders, of several the first. \return false when there is
    /// none; otherwise answered by `Progressed`, and by one `Ended` in the end
    bool Follow(QStringList const& p_Folders);

    /// Tells whoever works in these folders, and waits for the answers: of a pause as long as it
    /// takes until it holds. \return false when nobody does, or has ended meanwhile
    static bool Send(QStringList const& p_Folders, ControlMessage const& p_Message);
    /// Who works in a folder, and how far it is; waits for the answer, not long.
    static std::optional<RunningHost> Look(QString const& p_Folder);

Q_SIGNALS:
    void Progressed(RunSnapshot p_Snapshot);
    /// \param p_Result without what is only in lists; a program that has ended without a word, or
    /// too fast for it to be heard, has failed with `RunLost`
    void Ended(RunResult p_Result, QString p_Game);

private:
    void Read();
    void OnGone();

    QLocalSocket Socket;
    QString Folder;
    bool HasEnded = false;
};

} // namespace Varnholt::Host
