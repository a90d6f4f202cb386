#include "Publisher/Verification/ContentCheck.hpp"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <vector>

namespace Varnholt::Publisher {

QString ProblemOfContent(QString const& p_Path, QString const& p_Md5,
                         std::function<void(qint64)> const& p_Read)
{
    constexpr std::size_t c_BlockBytes = 256UL * 1024;

    QFile file(p_Path);
    if (!file.exists())
        return QStringLiteral("is missing");
    if (!QFileInfo(p_Path).isFile())
        return QStringLiteral("is no file");
    QCryptographicHash hash(QCryptographicHash::Md5);
    std::vector<char> block(c_BlockBytes);
    bool const isOpen = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    qint64 bytes = isOpen ? 0 : -1;
    while (isOpen && (bytes = file.read(block.data(), c_BlockBytes)) > 0) {
        hash.addData(block.data(), static_cast<int>(bytes));
        p_Read(bytes);
    }
    if (bytes < 0)
        return QStringLiteral("cannot be read: ") + file.errorString();
    QString const md5 = QString::fromLatin1(hash.result().toHex().toUpper());
    if (md5 == p_Md5)
        return {};
    return QStringLiteral("the MD5 of its %1 bytes is %2").arg(QString::number(file.size()), md5);
}

} // namespace Varnholt::Publisher
