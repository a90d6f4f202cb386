#include "Signing/MinisignFormat.hpp"

#include <sodium.h>

#include <stdexcept>

namespace Varnholt::Signing {

void StartSodium()
{
    if (sodium_init() < 0)
        throw std::runtime_error("libsodium cannot be used: no randomness is to be had");
}

QByteArray Blake2b(QByteArray const& p_Bytes, int p_Length)
{
    QByteArray hash(p_Length, 0);
    crypto_generichash(Bytes(hash), static_cast<size_t>(p_Length), Bytes(p_Bytes),
                       static_cast<size_t>(p_Bytes.size()), nullptr, 0);
    return hash;
}

QByteArray FromBase64(QByteArray const& p_Text, int p_Length)
{
    auto const decoded =
        QByteArray::fromBase64Encoding(p_Text, QByteArray::AbortOnBase64DecodingErrors);
    return decoded && decoded.decoded.size() == p_Length ? decoded.decoded : QByteArray();
}

} // namespace Varnholt::Signing
