#include "Signing/SecretKey.hpp"

#include "Signing/KeyFailure.hpp"
#include "Signing/MinisignFormat.hpp"
#include "Signing/SecretKeyText.hpp"

#include <QFile>

#include <sodium.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Signing {

namespace {

QByteArray Read(QString const& p_File)
{
    QFile file(p_File);
    if (!file.open(QIODevice::ReadOnly))
        throw KeyFailure(QStringLiteral("cannot be read: ") + file.errorString());
    return file.read(c_MaximumFileBytes + 1);
}

} // namespace

SecretKey::~SecretKey()
{
    sodium_memzero(Key.data(), Key.size());
}

SecretKey SecretKey::Create()
{
    StartSodium();
    SecretKey created;
    created.Id.resize(c_KeyIdBytes);
    randombytes_buf(created.Id.data(), c_KeyIdBytes);
    std::array<unsigned char, c_PublicKeyBytes> publicKey = {};
    crypto_sign_keypair(publicKey.data(), created.Key.data());
    return created;
}

SecretKey SecretKey::Load(QString const& p_File, QByteArray const& p_Password)
{
    StartSodium();
    QByteArray pair = SecretKeyText::Parse(Read(p_File)).Open(p_Password);
    SecretKey loaded;
    loaded.Id = pair.left(c_KeyIdBytes);
    std::memcpy(loaded.Key.data(), pair.constData() + c_KeyIdBytes, loaded.Key.size());
    sodium_memzero(pair.data(), static_cast<size_t>(pair.size()));
    return loaded;
}

bool SecretKey::NeedsPassword(QString const& p_File)
{
    return SecretKeyText::Parse(Read(p_File)).IsEncrypted();
}

void SecretKey::Save(QString const& p_File, QByteArray const& p_Password, Strength p_Strength) const
{
    QByteArray const text = SecretKeyText::Seal(Id + KeyBytes(), p_Password, p_Strength);
    int const descriptor = ::open(QFile::encodeName(p_File).constData(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        throw KeyFailure(errno == EEXIST
                             ? QStringLiteral("exists already: a key is never replaced")
                             : QStringLiteral("cannot be written: ") + qt_error_string(errno));
    }
    QFile file;
    bool const isWritten =
        file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle) &&
        file.write(text) == text.size() && file.flush() && ::fsync(descriptor) == 0;
    if (!isWritten) {
        QFile::remove(p_File); // half a key would only be in the way of the next attempt
        throw KeyFailure(QStringLiteral("cannot be written: ") + file.errorString());
    }
}

PublicKey SecretKey::Public() const
{
    return {Id, KeyBytes().right(c_PublicKeyBytes)};
}

QByteArray SecretKey::RawSignature(QByteArray const& p_Bytes) const
{
    QByteArray signature(c_SignatureBytes, 0);
    crypto_sign_detached(Bytes(signature), nullptr, Bytes(p_Bytes),
                         static_cast<unsigned long long>(p_Bytes.size()), Key.data());
    return signature;
}

QByteArray SecretKey::KeyBytes() const
{
    return {reinterpret_cast<char const*>(Key.data()), static_cast<int>(Key.size())};
}

} // namespace Varnholt::Signing
