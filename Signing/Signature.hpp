#pragma once

#include "Signing/PublicKey.hpp"
#include "Signing/SecretKey.hpp"
#include "Signing/TrustedComment.hpp"

#include <QByteArray>
#include <QList>

namespace Varnholt::Signing {

/// A longer signature file is refused unread: who fetches one need not read on.
constexpr int c_MaximumSignatureBytes = 4096;

/// What a check of a signature came to.
struct Verification {
    enum class Reason {
        Malformed,      ///< no signature file, or its trusted comment is not ours
        UnknownKey,     ///< made by a key that is not among the given ones
        WrongSignature, ///< the bytes or the comment are not what was signed
        Good,
    };

    Reason Outcome = Reason::Malformed;
    /// Of a good one only: nobody vouches for others.
    TrustedComment Comment;
    /// The one that signed, as `PublicKey::KeyId` tells it; none of what is malformed.
    QString KeyId;

    bool IsGood() const { return Outcome == Reason::Good; }
};

/// \return a detached signature file, which lies beside the bytes under their name and ".minisig";
/// `minisign -V` takes it
QByteArray Sign(QByteArray const& p_Bytes, SecretKey const& p_Key, TrustedComment const& p_Comment);

/// Whether one of the keys signed exactly these bytes. What the comment tells is the caller's to
/// compare with what he asked for.
Verification Verify(QByteArray const& p_Bytes, QByteArray const& p_Signature,
                    QList<PublicKey> const& p_Keys);

} // namespace Varnholt::Signing
