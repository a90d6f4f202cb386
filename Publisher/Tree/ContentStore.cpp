#include "Publisher/Tree/ContentStore.hpp"

#include "Publisher/Failure.hpp"

#include <QDirIterator>
#include <QFileInfo>

namespace Varnholt::Publisher {

ContentStore::ContentStore(QString const& p_Folder)
    : Folder(p_Folder)
{
}

QString ContentStore::LocationOf(QString const& p_Md5)
{
    return QStringLiteral("files/%1/%2").arg(p_Md5.left(2), p_Md5);
}

QString ContentStore::PathOf(QString const& p_Md5) const
{
    return Folder + QLatin1Char('/') + LocationOf(p_Md5);
}

bool ContentStore::Holds(QString const& p_Md5, qint64 p_Size) const
{
    QFileInfo const info(PathOf(p_Md5));
    // Mostly it is there, and then one question is enough.
    if (!info.isFile()) {
        if (!info.exists() && !info.isSymbolicLink())
            return false;
        throw Failure(info.filePath() + QStringLiteral(": stands where a content file must go"));
    }
    return info.size() == p_Size && !Damaged.contains(p_Md5);
}

bool ContentStore::HasSize(qint64 p_Size) const
{
    std::call_once(SizesRead, [this] {
        QDirIterator files(Folder + QStringLiteral("/files"), QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            files.next();
            Sizes.insert(files.fileInfo().size());
        }
    });
    return Sizes.contains(p_Size);
}

} // namespace Varnholt::Publisher
