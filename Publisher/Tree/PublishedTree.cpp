#include "Publisher/Tree/PublishedTree.hpp"

#include "Publisher/Failure.hpp"

#include <QFile>
#include <QFileInfo>

namespace Varnholt::Publisher {

PublishedTree::PublishedTree(QString const& p_Output, QString const& p_AppId)
    : Output(p_Output)
    , AppFolder(p_Output + QLatin1Char('/') + p_AppId)
{
    if (!QFileInfo(AppFolder + QStringLiteral("/builds")).isDir())
        throw Failure(QStringLiteral("%1: no build of %2 is published there").arg(Output, p_AppId));
}

QString PublishedTree::PathOf(QString const& p_Location) const
{
    return AppFolder + QLatin1Char('/') + p_Location;
}

PublishedBuild PublishedTree::ReadBuild(QString const& p_Id) const
{
    QFile file(PathOf(QStringLiteral("builds/%1/info.json").arg(p_Id)));
    if (!file.exists())
        throw Failure(QStringLiteral("%1: there is no build %2").arg(file.fileName(), p_Id));
    if (!file.open(QIODevice::ReadOnly)) {
        throw Failure(
            QStringLiteral("%1: cannot be read: %2").arg(file.fileName(), file.errorString()));
    }
    return PublishedBuild::Parse(file.readAll(), file.fileName());
}

qint64 PublishedTree::SizeOf(PublishedFile const& p_File) const
{
    QFileInfo const info(PathOf(p_File.Location));
    if (!info.isFile()) {
        throw Failure(
            QStringLiteral("%1: the content of %2 is missing").arg(info.filePath(), p_File.Path));
    }
    return info.size();
}

} // namespace Varnholt::Publisher
