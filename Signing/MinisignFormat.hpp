#pragma once

#include <QByteArray>

namespace Varnholt::Signing {

// What files of minisign's have in common.
inline QByteArray const c_UntrustedComment = QByteArrayLiteral("untrusted comment: ");
inline QByteArray const c_KeyAlgorithm = QByteArrayLiteral("Ed");
constexpr int c_KeyIdBytes = 8;
constexpr int c_PublicKeyBytes = 32;
constexpr int c_SignatureBytes = 64;
/// No key file and no signature file is longer.
constexpr int c_MaximumFileBytes = 4096;

/// Makes libsodium ready. Any thread, any number of times. \throws std::runtime_error
void StartSodium();

inline unsigned char const* Bytes(QByteArray const& p_Bytes)
{
    return reinterpret_cast<unsigned char const*>(p_Bytes.constData());
}

inline unsigned char* Bytes(QByteArray& p_Bytes)
{
    return reinterpret_cast<unsigned char*>(p_Bytes.data());
}

/// BLAKE2b of p_Bytes, as long as asked.
QByteArray Blake2b(QByteArray const& p_Bytes, int p_Length);

/// \return nothing unless it is base64 of that many bytes and nothing else
QByteArray FromBase64(QByteArray const& p_Text, int p_Length);

} // namespace Varnholt::Signing
