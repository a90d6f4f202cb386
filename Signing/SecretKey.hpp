#pragma once

#include "Signing/PublicKey.hpp"

#include <QByteArray>
#include <QString>

#include <array>

namespace Varnholt::Signing {

/// An Ed25519 key pair with a name; signs, see `Sign`. Files of it are minisign's, which takes them
/// and makes them too. The secret is overwritten when it goes.
class SecretKey {
public:
    /// What each try of a password costs, a wrong one as well as the right one.
    enum class Strength {
        High,  ///< as minisign's: 1 GiB of memory and some seconds
        Quick, ///< 16 MiB and a tenth of a second
    };

    /// A new pair.
    static SecretKey Create();

    /// \param p_Password not asked for by a file without one
    /// \throws KeyFailure
    static SecretKey Load(QString const& p_File, QByteArray const& p_Password);
    /// \throws KeyFailure when it is no key file
    static bool NeedsPassword(QString const& p_File);

    /// Makes a file that its owner alone can read.
    /// \param p_Password none, and the file is not encrypted
    /// \throws KeyFailure, also when there is a file already
    void Save(QString const& p_File, QByteArray const& p_Password,
              Strength p_Strength = Strength::High) const;

    SecretKey(SecretKey const&) = default;
    SecretKey& operator=(SecretKey const&) = default;
    ~SecretKey();

    PublicKey Public() const;
    /// The signature of p_Bytes alone: 64 bytes.
    QByteArray RawSignature(QByteArray const& p_Bytes) const;

private:
    SecretKey() = default;
    QByteArray KeyBytes() const;

    QByteArray Id;
    std::array<unsigned char, 64> Key = {}; ///< the secret's seed and the public key
};

} // namespace Varnholt::Signing
