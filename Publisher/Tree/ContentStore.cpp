#include "Publisher/Tree/ContentStore.hpp"

#include "Publisher/Failure.hpp"

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

bool ContentStore::Holds(BuildFile const& p_File) const
{
    QFileInfo const info(PathOf(p_File.Md5));
    // What is mostly there is asked for once.
    if (!info.isFile()) {
        if (!info.exists() && !info.isSymbolicLink())
            return false;
        throw Failure(info.filePath() + QStringLiteral(": stands where a content file must go"));
    }
    if (info.size() != p_File.Source.Size) {
        throw Failure(QStringLiteral("%1: the content file is damaged (%2 bytes, not %3): remove "
                                     "it and publish again")
                          .arg(info.filePath())
                          .arg(info.size())
                          .arg(p_File.Source.Size));
    }
    return true;
}

} // namespace Varnholt::Publisher
