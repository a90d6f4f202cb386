#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>

namespace Varnholt::TestSupport {

/// Sees whether a server on this machine cannot get rid of what it wants to send, because its
/// client has stopped reading.
class StuckConnection {
public:
    explicit StuckConnection(quint16 p_ServerPort)
        : End(':' + QByteArray::number(p_ServerPort, 16).rightJustified(4, '0').toUpper())
    {
    }

    /// The system shows its connections here.
    static bool CanBeSeen() { return QFile::exists(QStringLiteral("/proc/net/tcp")); }

    /// True when the client takes nothing more and the server's queue did not grow since the last
    /// question.
    bool IsStuck()
    {
        QByteArray const before = Queue;
        Queue = FullQueue();
        return !Queue.isEmpty() && Queue == before;
    }

private:
    /// Length of the queue that waits for a client without room, as text; empty without one.
    QByteArray FullQueue() const
    {
        QFile connections(QStringLiteral("/proc/net/tcp"));
        if (!connections.open(QIODevice::ReadOnly))
            return {};
        for (QByteArray const& line : connections.readAll().split('\n')) {
            QList<QByteArray> const fields = line.simplified().split(' ');
            // Timer 4 asks the client again and again whether it has room.
            if (fields.size() > 5 && fields[1].endsWith(End) && fields[5].startsWith("04:"))
                return fields[4].left(8);
        }
        return {};
    }

    QByteArray End; ///< of the server's address
    QByteArray Queue;
};

} // namespace Varnholt::TestSupport
