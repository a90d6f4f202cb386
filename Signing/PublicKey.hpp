#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace Varnholt::Signing {

/// What signatures are checked with: an Ed25519 key and its name, as minisign writes them.
class PublicKey {
public:
    /// \param p_Id 8 bytes
    /// \param p_Key 32 bytes
    PublicKey(QByteArray p_Id, QByteArray p_Key);

    /// \param p_Text the key's line alone, or a public key file of minisign's
    static std::optional<PublicKey> FromText(QByteArray const& p_Text);

    /// The key's line, without an end.
    QByteArray ToText() const;
    /// A public key file, which `minisign -p` takes.
    QByteArray ToFileText() const;

    /// How people and minisign call it: 16 hexadecimal digits.
    QString KeyId() const;

    QByteArray const& RawId() const { return Id; }
    QByteArray const& RawKey() const { return Key; }

    bool operator==(PublicKey const& p_Other) const
    {
        return Id == p_Other.Id && Key == p_Other.Key;
    }

private:
    QByteArray Id;
    QByteArray Key;
};

} // namespace Varnholt::Signing
