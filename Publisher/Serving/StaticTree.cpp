#include "Publisher/Serving/StaticTree.hpp"

#include "Launcher/Helper/Paths.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <QFileInfo>

namespace Varnholt::Publisher {

StaticTree::StaticTree(QString const& p_Root)
{
    QFileInfo const root(p_Root);
    if (!root.isDir())
        throw Failure(p_Root + QStringLiteral(": the folder to serve does not exist"));
    Root = Launcher::Helper::Paths::WithSlash(root.canonicalFilePath());
}

QString StaticTree::FileOf(QByteArray const& p_Path) const
{
    if (!p_Path.startsWith('/') || p_Path.contains('\0'))
        return QString();
    for (QByteArray const& name : p_Path.split('/')) {
        // What the publisher keeps for itself is not served.
        if (name == ".." || TreeMark::IsPrivate(QString::fromUtf8(name)))
            return QString();
    }
    QFileInfo const file(Root + QString::fromUtf8(p_Path.mid(1)));
    // Links inside the folder are served, links that leave it are not.
    QString const path = file.canonicalFilePath();
    return file.isFile() && path.startsWith(Root) ? path : QString();
}

} // namespace Varnholt::Publisher
