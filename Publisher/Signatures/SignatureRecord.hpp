#pragma once

#include "Publisher/Signatures/SigningOptions.hpp"
#include "Signing/PublicKey.hpp"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Varnholt::Publisher {

/// What the publisher notes down of a tree's signatures: the key, and the number of the latest
/// change. Clients take no document with a lower number than one that they have seen, so none is
/// ever used twice, also when a change failed.
class SignatureRecord {
public:
    /// A tree without a record was never signed.
    /// \throws Failure when it cannot be understood
    explicit SignatureRecord(QString const& p_Root);

    QString const& Path() const { return File; }
    QByteArray Text() const;

    bool IsSigned() const { return Key.has_value(); }
    std::optional<Signing::PublicKey> const& SigningKey() const { return Key; }
    void SetKey(Signing::PublicKey const& p_Key) { Key = p_Key; }
    quint64 Sequence() const { return Number; }
    void SetSequence(quint64 p_Number) { Number = p_Number; }

    /// Refuses a change that would lock out the players who have a key: an unsigned one, unless
    /// that is wanted, and one with another key. \throws Failure
    void CheckMayChange(SigningOptions const& p_Options) const;

private:
    QString File;
    std::optional<Signing::PublicKey> Key;
    quint64 Number = 0;
};

} // namespace Varnholt::Publisher
