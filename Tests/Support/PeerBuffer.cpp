#include "Tests/Support/PeerBuffer.hpp"

#include <QFile>
#include <QHostAddress>
#include <QtEndian>

#ifdef Q_OS_MACOS
#include <QThread>
#endif

namespace Varnholt::TestSupport {

#ifdef Q_OS_MACOS

bool PeerHasReadAll(QTcpSocket const& p_Socket)
{
    constexpr unsigned long c_UsuallyEnough = 50; // the system does not tell of other sockets

    QThread::msleep(c_UsuallyEnough);
    return p_Socket.bytesToWrite() == 0;
}

#else

namespace {

/// As the system's table of connections writes it: the address in the machine's byte order.
QByteArray TableName(QHostAddress const& p_Address, quint16 p_Port)
{
    quint32 const address = qToBigEndian(p_Address.toIPv4Address());
    return QStringLiteral("%1:%2")
        .arg(address, 8, 16, QLatin1Char('0'))
        .arg(p_Port, 4, 16, QLatin1Char('0'))
        .toUpper()
        .toLatin1();
}

} // namespace

bool PeerHasReadAll(QTcpSocket const& p_Socket)
{
    if (p_Socket.bytesToWrite() > 0)
        return false;
    QByteArray const ours = TableName(p_Socket.localAddress(), p_Socket.localPort());
    QByteArray const theirs = TableName(p_Socket.peerAddress(), p_Socket.peerPort());
    QFile table(QStringLiteral("/proc/net/tcp"));
    if (!table.open(QIODevice::ReadOnly))
        return true;
    // "sl local remote state sent:received ...", where what is received waits for its reader.
    for (QByteArray const& line : table.readAll().split('\n')) {
        QList<QByteArray> const fields = line.simplified().split(' ');
        if (fields.size() < 5)
            continue;
        bool const fromUs = fields[1] == ours && fields[2] == theirs;
        bool const fromThem = fields[1] == theirs && fields[2] == ours;
        if (fromUs && !fields[4].startsWith("00000000:"))
            return false;
        if (fromThem && !fields[4].endsWith(":00000000"))
            return false;
    }
    return true;
}

#endif

} // namespace Varnholt::TestSupport
