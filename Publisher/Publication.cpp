#include "Publisher/Publication.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/FlagNames.hpp"
#include "Publisher/ManifestWriter.hpp"
#include "Publisher/NativePath.hpp"
#include "Publisher/OptionChecks.hpp"
#include "Publisher/ParallelFor.hpp"
#include "Publisher/RuleSetReader.hpp"
#include "Publisher/SourceReader.hpp"
#include "Publisher/SourceScan.hpp"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

namespace Varnholt::Publisher {

namespace {

/// Where `varnholt-publish serve` listens by default, and where clients look by default.
QString const c_DefaultHost = QStringLiteral("127.0.0.1:8080");

bool IsAtOrBelow(QString const& p_Path, QString const& p_Folder)
{
    auto const canonical = [](QString const& p_Name) {
        std::error_code error;
        auto const path = std::filesystem::weakly_canonical(
            std::filesystem::absolute(NativePath::From(p_Name)), error);
        return NativePath::ToText(path / "");
    };
    return canonical(p_Path).startsWith(canonical(p_Folder));
}

/// Large files first, so that no core is left alone with one at the end.
std::vector<std::size_t> LargestFirst(std::vector<BuildFile> const& p_Files)
{
    std::vector<std::size_t> order(p_Files.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t p_One, std::size_t p_Two) {
        return p_Files[p_One].Source.Size > p_Files[p_Two].Source.Size;
    });
    return order;
}

qint64 TotalBytes(std::vector<BuildFile> const& p_Files)
{
    qint64 bytes = 0;
    for (BuildFile const& file : p_Files)
        bytes += file.Source.Size;
    return bytes;
}

} // namespace

Publication::Publication(PublishOptions const& p_Options, PublicationObserver& p_Observer)
    : Options(p_Options)
    , Observer(p_Observer)
    , AppFolder(p_Options.Output + QLatin1Char('/') + p_Options.AppId)
    , Store(AppFolder)
{
}

PublicationSummary Publication::Run()
{
    QElapsedTimer timer;
    timer.start();
    Summary = PublicationSummary();

    OptionChecks::Check(Options);
    CheckFolders();
    RuleSet const rules = ReadRules();
    std::vector<BuildFile> files = ListFiles(rules);
    CheckGameExecutable(files);

    TreeTransaction tree(Options.Output);
    Hash(files);
    AddContent(files, tree);
    AddManifest(ManifestWriter::Write(Options.Build, rules.Locales, files, Options.Platform), tree);
    AddServerFiles(tree);
    AddVersion(tree);
    tree.Commit();

    Summary.Files = static_cast<int>(files.size());
    Summary.StreamedFiles =
        static_cast<int>(std::count_if(files.begin(), files.end(), [](BuildFile const& p_File) {
            return p_File.Treatment.Streamed;
        }));
    Summary.Bytes = TotalBytes(files);
    Summary.Milliseconds = timer.elapsed();
    return Summary;
}

void Publication::CheckFolders() const
{
    if (IsAtOrBelow(Options.Output, Options.Source)) {
        throw Failure(Options.Output +
                      QStringLiteral(": the output folder must not be inside the source folder"));
    }
    if (IsAtOrBelow(Options.Source, AppFolder)) {
        throw Failure(Options.Source +
                      QStringLiteral(": the source folder must not be inside published content"));
    }
}

RuleSet Publication::ReadRules() const
{
    if (Options.RulesFile.isEmpty())
        return RuleSet{{}, Options.Locales};
    return RuleSetReader(Options.RulesFile, Options.Platform).Read(Options.Locales);
}

std::vector<BuildFile> Publication::ListFiles(RuleSet const& p_Rules) const
{
    SourceScan scan(Options.Source, [&p_Rules](QString const& p_Path) {
        return !p_Rules.TreatmentOf(p_Path).Excluded;
    });
    std::vector<BuildFile> files;
    for (SourceFile const& source : scan.Run())
        files.push_back({source, p_Rules.TreatmentOf(source.Path), QString()});
    return files;
}

void Publication::CheckGameExecutable(std::vector<BuildFile> const& p_Files) const
{
    qint32 const flag = FlagNames::GameExecutable(Options.Platform);
    BuildFile const* found = nullptr;
    for (BuildFile const& file : p_Files) {
        if ((file.Treatment.Flags & flag) == 0)
            continue;
        if (file.Treatment.Streamed) {
            throw Failure(file.Source.Path +
                          QStringLiteral(": the game's executable must not be streamed"));
        }
        if (found) {
            throw Failure(QStringLiteral("%1 and %2 both have the flag game-executable: a build "
                                         "has exactly one")
                              .arg(found->Source.Path, file.Source.Path));
        }
        found = &file;
    }
    if (!found) {
        throw Failure(Options.Source +
                      QStringLiteral(": no file has the flag game-executable: give it to the "
                                     "game's executable in the rules file"));
    }
    auto const executable = Launcher::ApplicationManifestFileEntry::Executable;
    if (Options.Platform == ContentPlatform::Mac && (found->Treatment.Flags & executable) == 0) {
        Observer.Warned(found->Source.Path +
                        QStringLiteral(": the game's executable has no flag executable, so "
                                       "clients cannot start it"));
    }
}

void Publication::Hash(std::vector<BuildFile>& p_Files)
{
    Observer.PhaseStarted(QStringLiteral("Hashing"), TotalBytes(p_Files));
    std::vector<std::size_t> const order = LargestFirst(p_Files);
    ParallelFor(order.size(), [&](std::size_t p_Index) {
        BuildFile& file = p_Files[order[p_Index]];
        file.Md5 = SourceReader::Read(
            file.Source, [this](char const*, qint64 p_Bytes) { Observer.BytesRead(p_Bytes); });
    });
}

void Publication::AddContent(std::vector<BuildFile> const& p_Files, TreeTransaction& p_Tree)
{
    std::vector<BuildFile> missing;
    QSet<QString> known;
    for (BuildFile const& file : p_Files) {
        if (!known.contains(file.Md5) && !Store.Holds(file))
            missing.push_back(file);
        known.insert(file.Md5);
    }
    Summary.NewContentFiles = static_cast<int>(missing.size());
    Summary.NewContentBytes = TotalBytes(missing);

    Observer.PhaseStarted(QStringLiteral("Copying"), Summary.NewContentBytes);
    std::vector<QString> copies(missing.size());
    ParallelFor(missing.size(), [&](std::size_t p_Index) {
        copies[p_Index] = p_Tree.NewFile();
        CopyTo(copies[p_Index], missing[p_Index]);
    });
    for (std::size_t i = 0; i < missing.size(); ++i)
        p_Tree.Add(copies[i], Store.PathOf(missing[i].Md5));
}

void Publication::CopyTo(QString const& p_Target, BuildFile const& p_File)
{
    QFile target(p_Target);
    auto const fail = [&target] {
        throw Failure(target.fileName() + QStringLiteral(": cannot be written: ") +
                      target.errorString());
    };
    if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        fail();
    QString const md5 = SourceReader::Read(p_File.Source, [&](char const* p_Data, qint64 p_Bytes) {
        if (target.write(p_Data, p_Bytes) != p_Bytes)
            fail();
        Observer.BytesRead(p_Bytes);
    });
    // Published bytes are what the manifest says, also when the file's times and size say nothing.
    if (md5 != p_File.Md5)
        throw Failure(SourceReader::ChangedText(p_File.Source));
}

void Publication::AddManifest(QByteArray const& p_Manifest, TreeTransaction& p_Tree) const
{
    QString const path = QStringLiteral("%1/builds/%2/info.json").arg(AppFolder, Options.Build.Id);
    if (!QFileInfo(path).isFile()) {
        p_Tree.AddText(p_Manifest, path);
        return;
    }
    // Clients may be in the middle of this build, so it stays as it is.
    QFile published(path);
    if (!published.open(QIODevice::ReadOnly) || published.readAll() != p_Manifest) {
        throw Failure(QStringLiteral("%1: this build is already published with other content: "
                                     "choose another --build")
                          .arg(path));
    }
}

void Publication::AddServerFiles(TreeTransaction& p_Tree) const
{
    QString const hosts = Options.Output + QStringLiteral("/cdns.info");
    if (Options.Hosts || !QFileInfo(hosts).isFile()) {
        QStringList const names = Options.Hosts.value_or(QStringList{c_DefaultHost});
        // One blank between the names and nothing after the last: clients trim nothing.
        p_Tree.AddText(names.join(QLatin1Char(' ')).toUtf8(), hosts);
    }
    if (Options.RealmListAddress) {
        // Clients put the whole content into the game's configuration as one line.
        QString const line = QStringLiteral("SET realmlist \"%1\"").arg(*Options.RealmListAddress);
        p_Tree.AddText(line.toUtf8(), AppFolder + QStringLiteral("/realmlist.info"));
    }
}

void Publication::AddVersion(TreeTransaction& p_Tree) const
{
    QString const name =
        Options.DevChannel ? QStringLiteral("/version_dev.json") : QStringLiteral("/version.json");
    QJsonObject const version{{QStringLiteral("build"), Options.Build.Id}};
    p_Tree.AddText(QJsonDocument(version).toJson(QJsonDocument::Compact), AppFolder + name);
}

} // namespace Varnholt::Publisher
