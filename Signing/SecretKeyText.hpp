#pragma once

#include "Signing/SecretKey.hpp"

#include <QByteArray>

namespace Varnholt::Signing {

/// The text of minisign's secret key files, encrypted when there is a password.
class SecretKeyText {
public:
    /// \throws KeyFailure
    static SecretKeyText Parse(QByteArray const& p_Text);

    bool IsEncrypted() const;
    /// \return the key's name and the key behind it
    /// \throws KeyFailure when the password is a wrong one
    QByteArray Open(QByteArray const& p_Password) const;

    /// \param p_Password none, and nothing is encrypted
    /// \throws KeyFailure when there is not enough memory
    static QByteArray Seal(QByteArray const& p_Pair, QByteArray const& p_Password,
                           SecretKey::Strength p_Strength);

private:
    explicit SecretKeyText(QByteArray p_Raw);

    QByteArray Raw;
};

} // namespace Varnholt::Signing
