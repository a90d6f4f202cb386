#pragma once

#include "Tests/Host/HostGame.hpp"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// Looks at the files of a game while it changes: none may ever stand under its final name with
/// bytes that no build gave it.
class Referee {
public:
    /// What the game's files may hold is what its content says now.
    explicit Referee(HostGame const& p_Game);

    /// Bytes that a file may hold too: those of the build before, or of a player who damaged it.
    void Allow(QString const& p_File, QByteArray const& p_Bytes);
    /// Looks at every file that has changed since the last look.
    void Look();
    /// The files that held what they must not, each once.
    QStringList Faults() const;

private:
    /// What tells a file from the one that stood there before.
    struct Stamp {
        quint64 Inode = 0;
        qint64 Size = 0;
        qint64 Nanoseconds = 0;

        bool operator==(Stamp const& p_Other) const
        {
            return Inode == p_Other.Inode && Size == p_Other.Size &&
                   Nanoseconds == p_Other.Nanoseconds;
        }
    };
    static bool Read(QString const& p_Path, Stamp& p_Stamp, QByteArray& p_Digest,
                     Stamp const& p_Known);

    HostGame const& Game;
    QHash<QString, QSet<QByteArray>> Allowed; ///< digests by path
    QHash<QString, Stamp> Seen;
    QStringList Found;
};

} // namespace Varnholt::TestSupport
