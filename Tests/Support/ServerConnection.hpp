#pragma once

#include "Tests/Support/Answer.hpp"
#include "Tests/Support/RecordedRequest.hpp"
#include "Tests/Support/Response.hpp"
#include "Tests/Support/ServerScript.hpp"

#include <QElapsedTimer>
#include <QObject>
#include <QTcpSocket>

#include <functional>

namespace Varnholt::TestSupport {

/// One connection of a scripted server: reads requests one after another and plays their answers.
/// Lives on the server's thread and deletes itself when the connection has ended.
class ServerConnection : public QObject {
    Q_OBJECT

public:
    /// Takes the socket over.
    ServerConnection(QTcpSocket& p_Socket, ServerScript& p_Script, QElapsedTimer const& p_Clock,
                     int p_Number, QObject* p_Parent);

    /// Called when a gate was opened: goes on when it is the one waited for.
    void Retry();
    ~ServerConnection() override;

private:
    enum class Step { Reading, BeforeHeaders, BeforeBody, Body, Ending, Ended };

    void ReadRequest();
    bool ParseRequest(QByteArray const& p_Head);
    void Play();
    void SendHead();
    void SendBody();
    void EndAnswer();
    void CountAnswer(bool p_IsUnderWay);
    void EndConnection();
    bool MayPassGate();
    bool WillBeCut() const;
    /// Calls p_Next when the client has read what was sent; never when it has gone.
    void WhenRead(std::function<void()> p_Next);
    qint64 BodyEnd() const;

    QTcpSocket& Socket;
    ServerScript& Script;
    QElapsedTimer const& Clock;
    int const Number;
    QByteArray Input;
    Step Now = Step::Reading;
    bool IsAtGate = false;
    bool HasPassedGate = false;
    bool IsCounted = false; ///< as an answer under way
    RecordedRequest Request;
    Answer Plan;
    Response Bytes;
    qint64 Position = 0; ///< body bytes handed to the socket
};

} // namespace Varnholt::TestSupport
