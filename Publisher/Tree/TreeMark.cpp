#include "Publisher/Tree/TreeMark.hpp"

#include "Publisher/Failure.hpp"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace Varnholt::Publisher {

namespace {

QString const c_Prefix = QStringLiteral(".varnholt-publish.");

/// Whether it holds anything that is not the publisher's own.
bool HoldsForeignFiles(QString const& p_Folder)
{
    QDirIterator entries(p_Folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        if (!TreeMark::IsPrivate(entries.fileName()))
            return true;
    }
    return false;
}

} // namespace

TreeMark::TreeMark(QString const& p_Root)
    : Root(p_Root)
{
}

QString TreeMark::Path() const
{
    return PrivatePath(QStringLiteral("tree"));
}

QByteArray TreeMark::Text()
{
    return QByteArrayLiteral("varnholt-publish keeps this folder\n");
}

bool TreeMark::IsThere() const
{
    return QFileInfo(Path()).isFile();
}

void TreeMark::CheckMayPublish() const
{
    if (!IsThere() && HoldsForeignFiles(Root)) {
        throw Failure(Root + QStringLiteral(": the output folder is not empty and no published "
                                            "tree: choose an empty or a new one"));
    }
}

void TreeMark::CheckIsTree() const
{
    QFileInfo const root(Root);
    if (!root.exists())
        throw Failure(Root + QStringLiteral(": the output folder does not exist"));
    if (!root.isDir())
        throw Failure(Root + QStringLiteral(": is not a folder"));
    if (!IsThere())
        throw Failure(Root + QStringLiteral(": the output folder is no published tree"));
}

bool TreeMark::IsPrivate(QString const& p_Name)
{
    return p_Name.startsWith(c_Prefix);
}

QString TreeMark::PrivatePath(QString const& p_Name) const
{
    return Root + QLatin1Char('/') + c_Prefix + p_Name;
}

} // namespace Varnholt::Publisher
