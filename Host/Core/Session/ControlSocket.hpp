#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QLocalServer>
#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>
#include <vector>

class QLocalSocket;

namespace Varnholt::Host {

/// What one program tells another.
struct ControlMessage {
    enum class Type { Pause, Resume, LimitRate };

    Type Kind = Type::Pause;
    quint64 BytesPerSecond = 0; ///< of `LimitRate`; 0: as fast as it comes
};

/// Lets one program speak to another that is at work with the same settings file. A message per
/// connection, answered by "ok" when it has come true; only the same user's programs get through.
class ControlSocket : public QObject {
    Q_OBJECT

public:
    /// \param p_SettingsFile absolute, or seen from the current folder
    explicit ControlSocket(QString const& p_SettingsFile, QObject* p_Parent = nullptr);

    /// \return false when another program listens already, or the system does not allow it
    bool Listen();

    /// Answers those who have asked for a pause. \param p_Holds false: it was taken back before
    void TellPause(bool p_Holds);

    /// Sends a message to the program that listens, and waits for the answer: of a pause as long as
    /// the file in hand takes.
    static std::optional<Failure> Send(QString const& p_SettingsFile,
                                       ControlMessage const& p_Message);

Q_SIGNALS:
    void Received(Varnholt::Host::ControlMessage p_Message);

private:
    static QString Name(QString const& p_SettingsFile);
    void OnConnection();
    void Answer(QLocalSocket& p_Client);

    QString Path;
    std::vector<QPointer<QLocalSocket>> AwaitHold;
    QLocalServer Server;
};

} // namespace Varnholt::Host
