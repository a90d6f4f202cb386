#include "Publisher/Publication/Publication.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/OptionChecks.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Source/NativePath.hpp"
#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Source/SourceListing.hpp"
#include "Publisher/Source/SourceReader.hpp"
#include "Publisher/Tree/ContentStore.hpp"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>

namespace Varnholt::Publisher {

namespace {

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

/// The files that have to be read, large ones first, so that no core is left alone with one at the
/// end.
std::vector<std::size_t> UnhashedLargestFirst(std::vector<BuildFile> const& p_Files)
{
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < p_Files.size(); ++i) {
        if (p_Files[i].Md5.isEmpty())
            order.push_back(i);
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t p_One, std::size_t p_Two) {
        return p_Files[p_One].Source.Size > p_Files[p_Two].Source.Size;
    });
    return order;
}

} // namespace

Publication::Publication(PublishOptions const& p_Options, PublicationObserver& p_Observer)
    : Options(p_Options)
    , Observer(p_Observer)
    , AppFolder(p_Options.Output + QLatin1Char('/') + p_Options.AppId)
    , Mark(p_Options.Output)
    , Index(Mark.PrivatePath(p_Options.AppId + QStringLiteral(".index")), p_Options.Source)
{
}

PublicationSummary Publication::Run()
{
    QElapsedTimer timer;
    timer.start();
    Summary = PublicationSummary();

    OptionChecks::Check(Options);
    CheckFolders();
    RuleSet const rules = SourceListing::ReadRules(Options);
    Scanned = std::filesystem::file_time_type::clock::now();
    std::vector<BuildFile> files = SourceListing::PublishedFiles(Options, rules, Observer);
    SourceListing::CheckGameExecutable(Options, files, Observer);

    // A run that may turn out to change nothing does not touch the tree before.
    std::unique_ptr<TreeTransaction> tree;
    if (!Options.DryRun && !Options.IfChanged)
        tree = std::make_unique<TreeTransaction>(Options.Output);
    Hash(files);
    PublicationPlan const plan(Options, rules, files);
    Count(files, plan);
    if (Options.IfChanged)
        Summary.UnchangedBuild = plan.UnchangedBuild(rules, files);
    if (Summary.UnchangedBuild.isNull()) {
        if (Options.DryRun) {
            Summary.WouldWrite = plan.TreeFiles();
        } else {
            if (!tree)
                tree = std::make_unique<TreeTransaction>(Options.Output);
            Write(plan, files, *tree);
        }
    }
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
    Mark.CheckMayPublish();
    ServerLists::CheckBuild(Options);
}

void Publication::Hash(std::vector<BuildFile>& p_Files)
{
    if (Options.ReadIndex)
        TakeFromIndex(p_Files);
    std::vector<std::size_t> const order = UnhashedLargestFirst(p_Files);
    qint64 bytes = 0;
    for (std::size_t const index : order)
        bytes += p_Files[index].Source.Size;
    Observer.PhaseStarted(QStringLiteral("Hashing"), bytes);
    ParallelFor(order.size(), [&](std::size_t p_Index) {
        BuildFile& file = p_Files[order[p_Index]];
        file.Md5 = SourceReader::Read(
            file.Source, [this](char const*, qint64 p_Bytes) { Observer.BytesRead(p_Bytes); });
    });
}

void Publication::TakeFromIndex(std::vector<BuildFile>& p_Files)
{
    if (Index.FillIn(p_Files) == HashIndex::State::Damaged) {
        Observer.Warned(Index.FileName() +
                        QStringLiteral(": the index is damaged, so every file is read again"));
    }
    for (BuildFile const& file : p_Files) {
        if (file.Md5.isEmpty())
            continue;
        FromIndex.insert(file.Source.Path);
        ++Summary.IndexedFiles;
        Summary.IndexedBytes += file.Source.Size;
    }
}

void Publication::Write(PublicationPlan const& p_Plan, std::vector<BuildFile> const& p_Files,
                        TreeTransaction& p_Tree)
{
    // First of all, so that whatever is left of a run is known as the publisher's own.
    if (!Mark.IsThere())
        p_Tree.AddText(TreeMark::Text(), Mark.Path());
    if (Options.WriteIndex) {
        QString const index = p_Tree.NewFile();
        Index.Write(index, p_Files, Scanned);
        p_Tree.Add(index, Index.FileName());
    }
    WriteContent(p_Plan.Content, p_Tree);
    for (PublicationPlan::Text const& text : p_Plan.Manifest)
        p_Tree.AddText(text.Content, text.Target);
    for (PublicationPlan::Text const& text : p_Plan.ServerFiles)
        p_Tree.AddText(text.Content, text.Target);
    p_Tree.AddText(p_Plan.Version.Content, p_Plan.Version.Target);
    p_Tree.Commit();
}

void Publication::WriteContent(std::vector<BuildFile> const& p_Missing, TreeTransaction& p_Tree)
{
    Observer.PhaseStarted(QStringLiteral("Copying"), Summary.NewContentBytes);
    std::vector<QString> copies(p_Missing.size());
    ParallelFor(p_Missing.size(), [&](std::size_t p_Index) {
        copies[p_Index] = p_Tree.NewFile();
        CopyTo(copies[p_Index], p_Missing[p_Index]);
    });
    ContentStore const store(AppFolder);
    for (std::size_t i = 0; i < p_Missing.size(); ++i)
        p_Tree.Add(copies[i], store.PathOf(p_Missing[i].Md5));
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
    if (md5 == p_File.Md5)
        return;
    if (FromIndex.contains(p_File.Source.Path)) {
        throw Failure(p_File.Source.Path +
                      QStringLiteral(": the file changed since it was indexed, but not its time: "
                                     "publish with --rehash"));
    }
    throw Failure(SourceReader::ChangedText(p_File.Source));
}

void Publication::Count(std::vector<BuildFile> const& p_Files, PublicationPlan const& p_Plan)
{
    Summary.Files = static_cast<int>(p_Files.size());
    for (BuildFile const& file : p_Files) {
        Summary.Bytes += file.Source.Size;
        Summary.StreamedFiles += file.Treatment.Streamed ? 1 : 0;
    }
    Summary.NewContentFiles = static_cast<int>(p_Plan.Content.size());
    Summary.NewContentBytes = p_Plan.ContentBytes();
}

} // namespace Varnholt::Publisher
