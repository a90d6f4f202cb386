#pragma once

#include "Publisher/Tree/BuildRecord.hpp"
#include "Publisher/Tree/CatalogedBuild.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace Varnholt::Publisher {

/// The builds of an application in a published tree. Reads only.
class BuildCatalog {
public:
    BuildCatalog(QString const& p_Root, QString const& p_AppId);

    /// The application's folder.
    QString const& Folder() const { return AppFolder; }
    QString ManifestPath(QString const& p_Build) const;
    /// The file that names a channel's build.
    QString VersionPath(bool p_DevChannel) const;
    static QByteArray VersionText(QString const& p_Build);

    /// Whether the tree has a build of that name, complete or not.
    bool Has(QString const& p_Build) const;

    /// \throws Failure when the tree has no build of that name
    void CheckHas(QString const& p_Build) const;

    /// The build that a channel offers; null for none.
    /// \throws Failure when the version file cannot be understood
    QString BuildOn(bool p_DevChannel) const;

    /// The names of all builds, in the order in which they were published.
    /// \throws Failure when that cannot be told
    QStringList Builds() const;
    /// What the publisher has noted down of them. \throws Failure
    BuildRecord Record() const { return {Root, AppId}; }

    /// \throws Failure when the manifest cannot be understood
    CatalogedBuild Read(QString const& p_Build) const;

private:
    QString Root;
    QString AppId;
    QString AppFolder;
};

} // namespace Varnholt::Publisher
