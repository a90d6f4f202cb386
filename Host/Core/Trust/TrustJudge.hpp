#pragma once

#include "Host/Gateway/DocumentJudge.hpp"
#include "Signing/Signature.hpp"

#include <QCoreApplication>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>

namespace Varnholt::Host {

/// Whether documents are what the owner of a key has published for this game: their bytes, what
/// they are, and that they are no older than what was seen before. One for a run. Any thread.
class TrustJudge : public Gateway::DocumentJudge {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::TrustJudge)

public:
    using Role = Signing::TrustedComment::Role;
    using Problem = std::optional<Gateway::FetchProblem>;

    /// What is expected, and what is learned of it.
    struct Knowledge {
        QString Game;    ///< the module's identifier
        QString Channel; ///< "live" or "dev"
        /// Never empty: the key that the user has named, then each that the one before has named.
        QList<Signing::PublicKey> Keys;
        QMap<Role, quint64> Seen; ///< highest sequence numbers
        quint64 Kept = 0;         ///< that of the version file that is kept for offline use
    };

    explicit TrustJudge(Knowledge p_Knowledge);

    Problem Judge(Evidence const& p_Evidence) override;
    std::string KeyPath() const override;
    Knowledge Learned() const;

    /// The platform whose content the module is built for, as publishers call it.
    static QString Platform();

private:
    using Comment = Signing::TrustedComment;

    Problem Compare(Evidence const& p_Evidence, Comment const& p_Comment);
    Problem CompareSubject(Evidence const& p_Evidence, Comment const& p_Comment) const;
    Problem CompareAge(Evidence const& p_Evidence, Comment const& p_Comment) const;
    Problem TakeKey(Evidence const& p_Evidence);
    void Learn(Evidence const& p_Evidence, Comment const& p_Comment);

    mutable QMutex KnownMutex;
    Knowledge Known;
    QString Build; ///< that the version file names; empty until that was seen
};

} // namespace Varnholt::Host
