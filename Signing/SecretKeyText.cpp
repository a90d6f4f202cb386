#include "Signing/SecretKeyText.hpp"

#include "Signing/KeyFailure.hpp"
#include "Signing/MinisignFormat.hpp"

#include <QList>
#include <QtEndian>

#include <sodium.h>

#include <array>
#include <utility>

namespace Varnholt::Signing {

namespace {

QByteArray const c_Scrypt = QByteArrayLiteral("Sc");
QByteArray const c_NoDerivation = QByteArray(2, 0);
QByteArray const c_Checksum = QByteArrayLiteral("B2");

// Where a file's parts begin: the three algorithms' names, the salt, the two limits as numbers with
// the least byte first, and the pair with its checksum, which alone is encrypted.
constexpr int c_DerivationAt = 2;
constexpr int c_ChecksumAt = 4;
constexpr int c_SaltAt = 6;
constexpr int c_SaltBytes = crypto_pwhash_scryptsalsa208sha256_SALTBYTES;
constexpr int c_OperationsAt = c_SaltAt + c_SaltBytes;
constexpr int c_MemoryAt = c_OperationsAt + 8;
constexpr int c_PairAt = c_MemoryAt + 8;
constexpr int c_PairBytes = c_KeyIdBytes + crypto_sign_SECRETKEYBYTES;
constexpr int c_ChecksumBytes = 32;
constexpr int c_Bytes = c_PairAt + c_PairBytes + c_ChecksumBytes;

struct Limits {
    quint64 Operations;
    quint64 Memory;
};

constexpr Limits c_High = {crypto_pwhash_scryptsalsa208sha256_OPSLIMIT_SENSITIVE,
                           crypto_pwhash_scryptsalsa208sha256_MEMLIMIT_SENSITIVE};
constexpr Limits c_Quick = {crypto_pwhash_scryptsalsa208sha256_OPSLIMIT_INTERACTIVE,
                            crypto_pwhash_scryptsalsa208sha256_MEMLIMIT_INTERACTIVE};

QByteArray LittleEndian(quint64 p_Number)
{
    QByteArray bytes(sizeof p_Number, 0);
    qToLittleEndian(p_Number, bytes.data());
    return bytes;
}

/// Encrypts, and decrypts what it encrypted.
void Cover(QByteArray& p_Secret, QByteArray const& p_Password, QByteArray const& p_Salt,
           Limits p_Limits)
{
    QByteArray stream(p_Secret.size(), 0);
    if (crypto_pwhash_scryptsalsa208sha256(
            Bytes(stream), static_cast<unsigned long long>(stream.size()), p_Password.constData(),
            static_cast<unsigned long long>(p_Password.size()), Bytes(p_Salt), p_Limits.Operations,
            static_cast<size_t>(p_Limits.Memory)) != 0) {
        constexpr quint64 c_MiB = quint64{1024} * 1024;
        throw KeyFailure(QStringLiteral("its password needs %1 MiB of memory, which are not to be "
                                        "had")
                             .arg(p_Limits.Memory / c_MiB));
    }
    for (int i = 0; i < p_Secret.size(); ++i)
        p_Secret[i] = static_cast<char>(p_Secret.at(i) ^ stream.at(i));
    sodium_memzero(stream.data(), static_cast<size_t>(stream.size()));
}

/// Whether the public half belongs to the secret one.
bool IsPair(QByteArray const& p_Pair)
{
    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> publicKey = {};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> key = {};
    crypto_sign_seed_keypair(publicKey.data(), key.data(), Bytes(p_Pair) + c_KeyIdBytes);
    sodium_memzero(key.data(), key.size());
    return sodium_memcmp(publicKey.data(), Bytes(p_Pair) + p_Pair.size() - c_PublicKeyBytes,
                         publicKey.size()) == 0;
}

QByteArray ChecksumOf(QByteArray const& p_Pair)
{
    return Blake2b(c_KeyAlgorithm + p_Pair, c_ChecksumBytes);
}

} // namespace

SecretKeyText::SecretKeyText(QByteArray p_Raw)
    : Raw(std::move(p_Raw))
{
}

SecretKeyText SecretKeyText::Parse(QByteArray const& p_Text)
{
    QList<QByteArray> const lines = p_Text.trimmed().split('\n');
    bool const isText = p_Text.size() <= c_MaximumFileBytes && lines.size() == 2 &&
                        lines.first().startsWith(c_UntrustedComment);
    QByteArray const raw = isText ? FromBase64(lines.last(), c_Bytes) : QByteArray();
    QByteArray const derivation = raw.mid(c_DerivationAt, c_Scrypt.size());
    if (!raw.startsWith(c_KeyAlgorithm) || raw.mid(c_ChecksumAt, c_Checksum.size()) != c_Checksum ||
        (derivation != c_Scrypt && derivation != c_NoDerivation))
        throw KeyFailure(QStringLiteral("is no secret key file"));
    return SecretKeyText(raw);
}

bool SecretKeyText::IsEncrypted() const
{
    return Raw.mid(c_DerivationAt, c_Scrypt.size()) == c_Scrypt;
}

QByteArray SecretKeyText::Open(QByteArray const& p_Password) const
{
    QByteArray secret = Raw.mid(c_PairAt);
    if (IsEncrypted()) {
        Limits const limits = {qFromLittleEndian<quint64>(Raw.constData() + c_OperationsAt),
                               qFromLittleEndian<quint64>(Raw.constData() + c_MemoryAt)};
        // Nobody's file, honest or not, shall take all the memory or the day.
        if (limits.Operations > c_High.Operations || limits.Memory > c_High.Memory)
            throw KeyFailure(QStringLiteral("is no secret key file"));
        Cover(secret, p_Password, Raw.mid(c_SaltAt, c_SaltBytes), limits);
    }
    QByteArray pair = secret.left(c_PairBytes);
    QByteArray const checksum = secret.mid(c_PairBytes);
    // Where nothing is encrypted, minisign writes none.
    bool const isChecked =
        ChecksumOf(pair) == checksum || (!IsEncrypted() && checksum.count('\0') == c_ChecksumBytes);
    if (!isChecked || !IsPair(pair)) {
        throw KeyFailure(IsEncrypted() ? QStringLiteral("the password is wrong")
                                       : QStringLiteral("is damaged"));
    }
    sodium_memzero(secret.data(), static_cast<size_t>(secret.size()));
    return pair;
}

QByteArray SecretKeyText::Seal(QByteArray const& p_Pair, QByteArray const& p_Password,
                               SecretKey::Strength p_Strength)
{
    bool const isEncrypted = !p_Password.isEmpty();
    QByteArray secret = p_Pair + ChecksumOf(p_Pair);
    QByteArray salt(c_SaltBytes, 0);
    Limits limits = {0, 0};
    if (isEncrypted) {
        limits = p_Strength == SecretKey::Strength::High ? c_High : c_Quick;
        randombytes_buf(salt.data(), c_SaltBytes);
        Cover(secret, p_Password, salt, limits);
    }
    QByteArray const raw = c_KeyAlgorithm + (isEncrypted ? c_Scrypt : c_NoDerivation) + c_Checksum +
                           salt + LittleEndian(limits.Operations) + LittleEndian(limits.Memory) +
                           secret;
    return c_UntrustedComment +
           (isEncrypted ? "minisign encrypted secret key" : "minisign secret key") + '\n' +
           raw.toBase64() + '\n';
}

} // namespace Varnholt::Signing
