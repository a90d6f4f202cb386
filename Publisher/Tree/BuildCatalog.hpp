#pragma once

#include "Publisher/Tree/BuildRecord.hpp"
#include "Publisher/Tree/PublishedBuild.hpp"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Varnholt::Publisher {

/// A build of a published tree and what the tree holds of it.
struct CatalogedBuild {
    QString Id;
    QString Name;
    qint32 Number = 0;
    int Files = 0;
    int StreamedFiles = 0;
    qint64 Bytes = 0;      ///< of its files, as far as their content is there
    QSet<QString> Content; ///< locations of its content files
    QStringList Missing;   ///< those that are not there
};

/// What a published tree holds of an application. Reads only.
class BuildCatalog {
public:
    /// \param p_Root the tree's folder
    BuildCatalog(QString const& p_Root, QString const& p_AppId);

    /// \throws Failure when no build of the application was ever published there
    void CheckIsPublished() const;

    QString const& Root() const { return TreeFolder; }
    /// The application's folder.
    QString const& Folder() const { return AppFolder; }
    /// Where something of the application's folder lies on this machine.
    QString PathOf(QString const& p_Location) const;
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
    BuildRecord Record() const { return {TreeFolder, AppId}; }

    /// \throws Failure when there is no such build, or its manifest cannot be understood
    PublishedBuild ReadBuild(QString const& p_Build) const;
    /// The same, and what there is of its content. \throws Failure
    CatalogedBuild Read(QString const& p_Build) const;
    /// Size of a file's content. \throws Failure when it is missing
    qint64 SizeOf(PublishedFile const& p_File) const;

private:
    QString TreeFolder;
    QString AppId;
    QString AppFolder;
};

} // namespace Varnholt::Publisher
