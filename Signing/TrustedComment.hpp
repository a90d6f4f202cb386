#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace Varnholt::Signing {

/// What a signature vouches for besides the bytes: which document of which game they are, and since
/// when. One line of text; a reader skips the keys behind those that it knows.
struct TrustedComment {
    enum class Role {
        Version,   ///< names the channel's build
        Manifest,  ///< a build's list of files
        Hosts,     ///< a content server's mirrors
        RealmList, ///< where the game logs in
        Key,       ///< the key that signs from now on
    };

    Role Document = Role::Version;
    QString Game; ///< the application's folder on its servers
    QString Platform;
    QString Channel;                  ///< "live" or "dev"; of what all channels share, "live"
    QString Build;                    ///< none for what belongs to no build
    quint64 Sequence = 0;             ///< grows with every change of a tree
    QDateTime Time;                   ///< UTC, whole seconds
    std::optional<QDateTime> Expires; ///< UTC, whole seconds; none: never

    static std::optional<TrustedComment> FromText(QByteArray const& p_Text);
    QByteArray ToText() const;

    /// As it stands in the text.
    static QString NameOf(Role p_Role);
};

} // namespace Varnholt::Signing
