#pragma once

#include "Publisher/Tree/PublishedBuild.hpp"

#include <QString>
#include <QStringList>

namespace Varnholt::Publisher {

/// An application's part of a published tree, to be read only.
class PublishedTree {
public:
    /// \param p_Output the tree's folder
    /// \throws Failure when it holds nothing of the application
    PublishedTree(QString const& p_Output, QString const& p_AppId);

    /// \throws Failure
    PublishedBuild ReadBuild(QString const& p_Id) const;

    /// Where something of the application's folder lies on this machine.
    QString PathOf(QString const& p_Location) const;
    QString Folder() const { return Output; }

    /// Size of a file's content. \throws Failure when it is missing
    qint64 SizeOf(PublishedFile const& p_File) const;

private:
    QString Output;
    QString AppFolder;
};

} // namespace Varnholt::Publisher
