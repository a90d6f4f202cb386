#include "Publisher/Publication/PublicationPlan.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Tree/ManifestWriter.hpp"

#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace Varnholt::Publisher {

namespace {

/// Where `varnholt-publish serve` listens by default, and where clients look by default.
QString const c_LocalHost = QStringLiteral("127.0.0.1:8080");

bool Holds(QString const& p_File, QByteArray const& p_Content)
{
    QFile file(p_File);
    return file.open(QIODevice::ReadOnly) && file.readAll() == p_Content;
}

} // namespace

PublicationPlan::PublicationPlan(PublishOptions const& p_Options, RuleSet const& p_Rules,
                                 std::vector<BuildFile> const& p_Files, ContentStore const& p_Store)
    : Options(p_Options)
    , Tree(p_Options.Output, p_Options.AppId)
{
    AddContent(p_Files, p_Store);
    AddManifest(ManifestWriter::Write(Options.Build, p_Rules.Locales, p_Files, Options.Platform));
    AddServerFiles();
    Version = {Tree.VersionPath(Options.DevChannel), BuildCatalog::VersionText(Options.Build.Id)};
}

QString PublicationPlan::UnchangedBuild(RuleSet const& p_Rules,
                                        std::vector<BuildFile> const& p_Files) const
{
    if (!Content.empty() || !ServerFiles.empty())
        return QString();
    try {
        QString const id = Tree.BuildOn(Options.DevChannel);
        if (id.isNull() || !Tree.Has(id))
            return QString();
        CatalogedBuild const build = Tree.Read(id);
        BuildIdentity const identity{id, build.Name, build.Number};
        QByteArray const manifest =
            ManifestWriter::Write(identity, p_Rules.Locales, p_Files, Options.Platform);
        return Holds(Tree.ManifestPath(id), manifest) ? id : QString();
    } catch (Failure const&) {
        // Publishing is the cure of what cannot be understood.
        return QString();
    }
}

qint64 PublicationPlan::ContentBytes() const
{
    qint64 bytes = 0;
    for (BuildFile const& file : Content)
        bytes += file.Source.Size;
    return bytes;
}

std::vector<TreeFile> PublicationPlan::TreeFiles() const
{
    std::vector<TreeFile> files;
    for (BuildFile const& file : Content) {
        files.push_back({Options.AppId + QLatin1Char('/') + ContentStore::LocationOf(file.Md5),
                         file.Source.Size});
    }
    for (Text const& text : Texts())
        files.push_back({text.Target.mid(Options.Output.size() + 1), text.Content.size()});
    return files;
}

std::vector<TreeText> PublicationPlan::Texts() const
{
    std::vector<Text> texts = Manifest;
    texts.insert(texts.end(), ServerFiles.begin(), ServerFiles.end());
    texts.push_back(Version);
    return texts;
}

void PublicationPlan::AddContent(std::vector<BuildFile> const& p_Files, ContentStore const& p_Store)
{
    std::vector<char> held(p_Files.size());
    ParallelFor(
        p_Files.size(),
        [&](std::size_t p_Index) {
            BuildFile const& file = p_Files[p_Index];
            held[p_Index] = p_Store.Holds(file.Md5, file.Source.Size) ? 1 : 0;
        },
        Options.Jobs);
    QSet<QString> known;
    for (std::size_t i = 0; i < p_Files.size(); ++i) {
        if (held[i] != 0 || known.contains(p_Files[i].Md5))
            continue;
        Content.push_back(p_Files[i]);
        known.insert(p_Files[i].Md5);
    }
}

void PublicationPlan::AddManifest(QByteArray const& p_Manifest)
{
    QString const path = Tree.ManifestPath(Options.Build.Id);
    if (!QFileInfo(path).isFile()) {
        BuildRecord record = Tree.Record();
        if (record.MayBeCached(Options.Build.Id, p_Manifest)) {
            throw Failure(QStringLiteral("%1: another build of this name was removed less than %2 "
                                         "days ago and may be held by caches: choose another "
                                         "--build")
                              .arg(path)
                              .arg(BuildRecord::c_CachedDays));
        }
        record.SetOrder(Tree.Builds() + QStringList(Options.Build.Id));
        Record = {record.Path(), record.Text()};
        Manifest.push_back({path, p_Manifest});
        return;
    }
    // Clients may be in the middle of this build, so it stays as it is.
    if (!Holds(path, p_Manifest)) {
        throw Failure(QStringLiteral("%1: this build is already published with other content: "
                                     "choose another --build")
                          .arg(path));
    }
}

void PublicationPlan::AddServerFiles()
{
    QString const hosts = ServerLists::HostsPath(Options.Output);
    if (Options.Hosts || !QFileInfo(hosts).isFile())
        AddServerFile(ServerLists::HostsText(Options.Hosts.value_or(QStringList{c_LocalHost})),
                      hosts);
    if (Options.RealmListAddress)
        AddServerFile(ServerLists::RealmListText(*Options.RealmListAddress),
                      ServerLists::RealmListPath(Options.Output, Options.AppId));
}

void PublicationPlan::AddServerFile(QByteArray const& p_Content, QString const& p_Target)
{
    if (!Holds(p_Target, p_Content))
        ServerFiles.push_back({p_Target, p_Content});
}

} // namespace Varnholt::Publisher
