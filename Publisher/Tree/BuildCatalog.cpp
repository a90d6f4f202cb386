#include "Publisher/Tree/BuildCatalog.hpp"

#include "Publisher/ReadFile.hpp"
#include "Publisher/Source/NativePath.hpp"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Varnholt::Publisher {

namespace {

namespace fs = std::filesystem;

QString const c_Build = QStringLiteral("build");

[[noreturn]] void Fail(QString const& p_File, QString const& p_Cause)
{
    throw Failure(p_File + QStringLiteral(": ") + p_Cause);
}

fs::file_time_type TimeOf(QString const& p_File)
{
    std::error_code error;
    auto const time = fs::last_write_time(NativePath::From(p_File), error);
    return error ? fs::file_time_type() : time;
}

} // namespace

BuildCatalog::BuildCatalog(QString const& p_Root, QString const& p_AppId)
    : TreeFolder(p_Root)
    , AppId(p_AppId)
    , AppFolder(p_Root + QLatin1Char('/') + p_AppId)
{
}

void BuildCatalog::CheckIsPublished() const
{
    if (!QFileInfo(PathOf(QStringLiteral("builds"))).isDir())
        Fail(TreeFolder, QStringLiteral("no build of %1 is published there").arg(AppId));
}

QString BuildCatalog::PathOf(QString const& p_Location) const
{
    return AppFolder + QLatin1Char('/') + p_Location;
}

QString BuildCatalog::ManifestPath(QString const& p_Build) const
{
    return PathOf(QStringLiteral("builds/%1/info.json").arg(p_Build));
}

QString BuildCatalog::VersionPath(bool p_DevChannel) const
{
    return PathOf(p_DevChannel ? QStringLiteral("version_dev.json")
                               : QStringLiteral("version.json"));
}

QByteArray BuildCatalog::VersionText(QString const& p_Build)
{
    return QJsonDocument(QJsonObject{{c_Build, p_Build}}).toJson(QJsonDocument::Compact);
}

bool BuildCatalog::Has(QString const& p_Build) const
{
    // A name that leads elsewhere is nobody's build.
    bool const isName =
        !p_Build.contains(QLatin1Char('/')) && !p_Build.startsWith(QLatin1Char('.'));
    return isName && !p_Build.isEmpty() && QFileInfo(ManifestPath(p_Build)).isFile();
}

void BuildCatalog::CheckHas(QString const& p_Build) const
{
    if (!Has(p_Build))
        Fail(AppFolder, QStringLiteral("there is no build %1").arg(p_Build));
}

QString BuildCatalog::BuildOn(bool p_DevChannel) const
{
    QString const file = VersionPath(p_DevChannel);
    if (!QFileInfo::exists(file))
        return QString();
    QString build = QJsonDocument::fromJson(ReadFile(file))[c_Build].toString();
    if (build.isEmpty())
        Fail(file, QStringLiteral("is damaged: it names no build"));
    return build;
}

QStringList BuildCatalog::Builds() const
{
    QDir const folder(PathOf(QStringLiteral("builds")));
    QStringList builds;
    for (QString const& name :
         folder.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name)) {
        if (QFileInfo(ManifestPath(name)).isFile())
            builds += name;
    }
    // Builds of a tree that has no record yet are older than recorded ones. Equal times, as in a
    // copied tree, leave the order of the names.
    QStringList const order = Record().Order();
    auto const place = [&](QString const& p_Build) {
        return std::make_pair(order.indexOf(p_Build), TimeOf(ManifestPath(p_Build)));
    };
    std::stable_sort(builds.begin(), builds.end(), [&](QString const& p_One, QString const& p_Two) {
        return place(p_One) < place(p_Two);
    });
    return builds;
}

PublishedBuild BuildCatalog::ReadBuild(QString const& p_Build) const
{
    QString const path = ManifestPath(p_Build);
    if (!QFileInfo::exists(path))
        Fail(path, QStringLiteral("there is no build %1").arg(p_Build));
    return PublishedBuild::Parse(ReadFile(path), path);
}

CatalogedBuild BuildCatalog::Read(QString const& p_Build) const
{
    PublishedBuild const manifest = ReadBuild(p_Build);
    CatalogedBuild build;
    build.Id = p_Build;
    build.Name = manifest.Name;
    build.Number = manifest.Number;
    build.Files = static_cast<int>(manifest.Files.size());
    for (PublishedFile const& file : manifest.Files) {
        build.StreamedFiles += file.Streamed ? 1 : 0;
        QFileInfo const content(PathOf(file.Location));
        if (content.isFile())
            build.Bytes += content.size();
        else if (!build.Content.contains(file.Location))
            build.Missing += file.Location;
        build.Content.insert(file.Location);
    }
    return build;
}

qint64 BuildCatalog::SizeOf(PublishedFile const& p_File) const
{
    QFileInfo const info(PathOf(p_File.Location));
    if (!info.isFile())
        Fail(info.filePath(), QStringLiteral("the content of %1 is missing").arg(p_File.Path));
    return info.size();
}

} // namespace Varnholt::Publisher
