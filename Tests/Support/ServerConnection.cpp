#include "Tests/Support/ServerConnection.hpp"

#include "Tests/Support/PeerBuffer.hpp"

#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <limits>
#include <sys/socket.h>
#include <utility>

namespace Varnholt::TestSupport {

namespace {

/// How much may wait in the socket: what a client does not take is not counted as sent.
constexpr qint64 c_SocketBytes = 256 * 1024;

} // namespace

ServerConnection::ServerConnection(QTcpSocket& p_Socket, ServerScript& p_Script,
                                   QElapsedTimer const& p_Clock, int p_Number, QObject* p_Parent)
    : QObject(p_Parent)
    , Socket(p_Socket)
    , Script(p_Script)
    , Clock(p_Clock)
    , Number(p_Number)
{
    Socket.setParent(this);
    connect(&Socket, &QTcpSocket::readyRead, this, [this] { ReadRequest(); });
    connect(&Socket, &QTcpSocket::disconnected, this, [this] {
        Now = Step::Ended;
        CountAnswer(false);
        deleteLater();
    });
    connect(&Socket, &QTcpSocket::bytesWritten, this, [this] {
        if (Now == Step::Body && Plan.PieceBytes == 0)
            SendBody();
    });
}

ServerConnection::~ServerConnection()
{
    CountAnswer(false);
}

void ServerConnection::CountAnswer(bool p_IsUnderWay)
{
    if (std::exchange(IsCounted, p_IsUnderWay) == p_IsUnderWay)
        return;
    if (p_IsUnderWay)
        Script.BeginAnswer(Request.Method);
    else
        Script.EndAnswer(Request.Method);
}

void ServerConnection::ReadRequest()
{
    Input += Socket.readAll();
    int const end = Input.indexOf("\r\n\r\n");
    if (Now != Step::Reading || end < 0)
        return;
    QByteArray const head = Input.left(end);
    Input.remove(0, end + 4);
    if (!ParseRequest(head)) {
        Socket.disconnectFromHost();
        return;
    }
    Script.Record(Request);
    CountAnswer(true);
    Plan = Script.NextAnswer(Request.Method, Request.Path);
    Bytes = Response::Of(Request, Plan, Script.File(Request.Path));
    Position = 0;
    IsAtGate = HasPassedGate = false;
    Now = Step::BeforeHeaders;
    Play();
}

bool ServerConnection::ParseRequest(QByteArray const& p_Head)
{
    QList<QByteArray> lines = p_Head.split('\n');
    QList<QByteArray> const words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3)
        return false;
    Request = {};
    Request.Milliseconds = Clock.elapsed();
    Request.Connection = Number;
    Request.Method = words[0];
    Request.Target = words[1];
    Request.Path = QUrl::fromPercentEncoding(Request.Target.split('?').first());
    for (QByteArray const& line : lines) {
        int const colon = line.indexOf(':');
        Request.Headers.emplace_back(line.left(colon), line.mid(colon + 1).trimmed());
    }
    return true;
}

void ServerConnection::Retry()
{
    if (IsAtGate)
        Play();
}

void ServerConnection::Play()
{
    if (Now == Step::Body)
        return SendBody();
    if (Plan.IsHeldBeforeHeaders && !MayPassGate())
        return;
    if (Plan.IsClosedBeforeHeaders)
        return Socket.disconnectFromHost();
    SendHead();
}

void ServerConnection::SendHead()
{
    Socket.write(Bytes.Head);
    Now = Step::BeforeBody;
    auto const body = [this] {
        if (Now == Step::Ended)
            return;
        Now = Step::Body;
        SendBody();
    };
    if (WillBeCut())
        WhenRead(body);
    else
        body();
}

void ServerConnection::SendBody()
{
    qint64 const end = BodyEnd();
    while (Position < end && Socket.bytesToWrite() < c_SocketBytes) {
        qint64 const most = Plan.PieceBytes > 0 ? Plan.PieceBytes : c_SocketBytes;
        qint64 const start = Bytes.IsEndless ? Position % Bytes.Body.size() : Position;
        qint64 const rest = std::min<qint64>(end - Position, Bytes.Body.size() - start);
        qint64 const sent = Socket.write(Bytes.Body.constData() + start, std::min(most, rest));
        if (sent <= 0)
            return;
        Position += sent;
        Script.CountBodyBytes(Request.Path, sent);
        if (Plan.PieceBytes > 0)
            break;
    }
    if (Position < end) {
        if (Plan.PieceBytes > 0)
            QTimer::singleShot(Plan.PauseMilliseconds, this, [this] {
                if (Now == Step::Body)
                    SendBody();
            });
        return;
    }
    if (!Plan.HeldAfter || HasPassedGate)
        EndAnswer();
    else if (MayPassGate())
        SendBody();
}

bool ServerConnection::MayPassGate()
{
    if (!HasPassedGate)
        HasPassedGate = Script.PassGate(Request.Path);
    IsAtGate = !HasPassedGate;
    return HasPassedGate;
}

void ServerConnection::EndAnswer()
{
    Now = Step::Ending;
    CountAnswer(false);
    if (Plan.AtEnd != Answer::End::KeepAlive)
        return WhenRead([this] { EndConnection(); });
    Now = Step::Reading;
    ReadRequest();
}

void ServerConnection::EndConnection()
{
    if (Plan.AtEnd != Answer::End::Reset)
        return Socket.disconnectFromHost();
    while (Socket.bytesToWrite() > 0 && Socket.waitForBytesWritten())
        continue;
    linger const atOnce{1, 0};
    setsockopt(static_cast<int>(Socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
               sizeof(atOnce));
    Socket.abort();
}

void ServerConnection::WhenRead(std::function<void()> p_Next)
{
    constexpr int c_LookMilliseconds = 5;

    if (PeerHasReadAll(Socket))
        return p_Next();
    QTimer::singleShot(c_LookMilliseconds, this, [this, p_Next] {
        if (Now != Step::Ended)
            WhenRead(p_Next);
    });
}

bool ServerConnection::WillBeCut() const
{
    if (Plan.AtEnd == Answer::End::KeepAlive)
        return false;
    return Plan.AtEnd == Answer::End::Reset || Plan.SentBytes != Answer::c_Everything ||
           Plan.ClaimedLength.has_value();
}

qint64 ServerConnection::BodyEnd() const
{
    qint64 end = Bytes.IsEndless ? std::numeric_limits<qint64>::max() : Bytes.Body.size();
    if (Plan.SentBytes != Answer::c_Everything)
        end = std::min(end, Plan.SentBytes);
    if (Plan.HeldAfter && !HasPassedGate)
        end = std::min(end, *Plan.HeldAfter);
    return end;
}

} // namespace Varnholt::TestSupport
