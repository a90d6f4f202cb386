#include "GameModules/FileDigest.hpp"

#include <QCryptographicHash>
#include <QFile>

#include <array>

namespace Varnholt::Launcher::FileDigest {

Digest Of(QString const& p_Path, std::function<bool()> const& p_Continue)
{
    Digest digest;
    QFile file(p_Path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return digest;
    digest.Opened = true;

    QCryptographicHash hash(QCryptographicHash::Md5);
    std::array<char, c_BlockBytes> block{};
    for (;;) {
        qint64 const read = file.read(block.data(), block.size());
        if (read <= 0) {
            digest.Complete = read == 0;
            break;
        }
        if (!p_Continue())
            break;
        hash.addData(block.data(), static_cast<int>(read));
    }
    digest.Md5 = QString::fromLatin1(hash.result().toHex()).toUpper();
    return digest;
}

Digest Known(QString const& p_Md5, qint64 p_Size, std::function<bool()> const& p_Continue)
{
    for (qint64 asked = 0; asked < p_Size; asked += c_BlockBytes)
        if (!p_Continue())
            return {true, false, {}};
    return {true, true, p_Md5};
}

} // namespace Varnholt::Launcher::FileDigest
