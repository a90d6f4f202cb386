#include "Signing/Signature.hpp"

#include "Signing/MinisignFormat.hpp"

#include <sodium.h>

#include <optional>

namespace Varnholt::Signing {

namespace {

QByteArray const c_TrustedComment = QByteArrayLiteral("trusted comment: ");
/// Of the bytes' digest; the older way, which signs the bytes themselves, is not accepted.
QByteArray const c_DigestAlgorithm = QByteArrayLiteral("ED");
constexpr int c_DigestBytes = 64;

struct SignatureFile {
    QByteArray KeyId;
    QByteArray OfBytes;
    QByteArray Comment;
    QByteArray OfAll; ///< of the first signature and the comment behind it
};

std::optional<SignatureFile> Parse(QByteArray const& p_Text)
{
    if (p_Text.size() > c_MaximumSignatureBytes)
        return std::nullopt;
    QList<QByteArray> lines = p_Text.split('\n');
    if (lines.size() == 5 && lines.last().isEmpty())
        lines.removeLast();
    if (lines.size() != 4 || !lines[0].startsWith(c_UntrustedComment) ||
        !lines[2].startsWith(c_TrustedComment))
        return std::nullopt;
    QByteArray const raw =
        FromBase64(lines[1], c_DigestAlgorithm.size() + c_KeyIdBytes + c_SignatureBytes);
    QByteArray const ofAll = FromBase64(lines[3], c_SignatureBytes);
    if (!raw.startsWith(c_DigestAlgorithm) || ofAll.isEmpty())
        return std::nullopt;
    return SignatureFile{raw.mid(c_DigestAlgorithm.size(), c_KeyIdBytes),
                         raw.right(c_SignatureBytes), lines[2].mid(c_TrustedComment.size()), ofAll};
}

bool IsSignatureOf(QByteArray const& p_Signature, QByteArray const& p_Bytes, PublicKey const& p_Key)
{
    return crypto_sign_verify_detached(Bytes(p_Signature), Bytes(p_Bytes),
                                       static_cast<unsigned long long>(p_Bytes.size()),
                                       Bytes(p_Key.RawKey())) == 0;
}

} // namespace

QByteArray Sign(QByteArray const& p_Bytes, SecretKey const& p_Key, TrustedComment const& p_Comment)
{
    PublicKey const key = p_Key.Public();
    QByteArray const comment = p_Comment.ToText();
    QByteArray const ofBytes = p_Key.RawSignature(Blake2b(p_Bytes, c_DigestBytes));
    QByteArray const ofAll = p_Key.RawSignature(ofBytes + comment);
    return c_UntrustedComment + "signature of key " + key.KeyId().toLatin1() + '\n' +
           (c_DigestAlgorithm + key.RawId() + ofBytes).toBase64() + '\n' + c_TrustedComment +
           comment + '\n' + ofAll.toBase64() + '\n';
}

Verification Verify(QByteArray const& p_Bytes, QByteArray const& p_Signature,
                    QList<PublicKey> const& p_Keys)
{
    StartSodium();
    Verification verification;
    std::optional<SignatureFile> const file = Parse(p_Signature);
    auto const comment = file ? TrustedComment::FromText(file->Comment) : std::nullopt;
    if (!comment)
        return verification;
    verification.KeyId = PublicKey(file->KeyId, {}).KeyId();
    verification.Outcome = Verification::Reason::UnknownKey;
    QByteArray const digest = Blake2b(p_Bytes, c_DigestBytes);
    for (PublicKey const& key : p_Keys) {
        if (key.RawId() != file->KeyId)
            continue;
        verification.Outcome = Verification::Reason::WrongSignature;
        if (IsSignatureOf(file->OfBytes, digest, key) &&
            IsSignatureOf(file->OfAll, file->OfBytes + file->Comment, key)) {
            verification.Outcome = Verification::Reason::Good;
            verification.Comment = *comment;
            break;
        }
    }
    return verification;
}

} // namespace Varnholt::Signing
