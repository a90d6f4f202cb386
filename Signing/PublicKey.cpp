#include "Signing/PublicKey.hpp"

#include "Signing/MinisignFormat.hpp"

#include <QList>

#include <algorithm>
#include <utility>

namespace Varnholt::Signing {

PublicKey::PublicKey(QByteArray p_Id, QByteArray p_Key)
    : Id(std::move(p_Id))
    , Key(std::move(p_Key))
{
}

std::optional<PublicKey> PublicKey::FromText(QByteArray const& p_Text)
{
    if (p_Text.size() > c_MaximumFileBytes)
        return std::nullopt;
    QList<QByteArray> lines = p_Text.trimmed().split('\n');
    if (lines.size() == 2 && lines.first().startsWith(c_UntrustedComment))
        lines.removeFirst();
    if (lines.size() != 1)
        return std::nullopt;
    QByteArray const raw =
        FromBase64(lines.first(), c_KeyAlgorithm.size() + c_KeyIdBytes + c_PublicKeyBytes);
    if (!raw.startsWith(c_KeyAlgorithm))
        return std::nullopt;
    return PublicKey(raw.mid(c_KeyAlgorithm.size(), c_KeyIdBytes), raw.right(c_PublicKeyBytes));
}

QByteArray PublicKey::ToText() const
{
    return (c_KeyAlgorithm + Id + Key).toBase64();
}

QByteArray PublicKey::ToFileText() const
{
    return c_UntrustedComment + "minisign public key " + KeyId().toLatin1() + '\n' + ToText() +
           '\n';
}

QString PublicKey::KeyId() const
{
    QByteArray digits = Id; // a number whose least byte stands first
    std::reverse(digits.begin(), digits.end());
    return QString::fromLatin1(digits.toHex().toUpper());
}

} // namespace Varnholt::Signing
