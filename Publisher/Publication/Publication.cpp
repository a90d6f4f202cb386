#include "Publisher/Publication/Publication.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/OptionChecks.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Source/HashLine.hpp"
#include "Publisher/Source/NativePath.hpp"
#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Source/SourceListing.hpp"
#include "Publisher/Source/SourceReader.hpp"
#include "Publisher/Verification/ContentCheck.hpp"

#include <QElapsedTimer>
#include <QStorageInfo>

#include <algorithm>

namespace Varnholt::Publisher {

namespace {

constexpr qint64 c_LeastRoom = 1024LL * 1024;

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
std::vector<BuildFile*> UnhashedLargestFirst(std::vector<BuildFile>& p_Files)
{
    std::vector<BuildFile*> order;
    for (BuildFile& file : p_Files) {
        if (file.Md5.isEmpty())
            order.push_back(&file);
    }
    std::stable_sort(order.begin(), order.end(), [](BuildFile* p_One, BuildFile* p_Two) {
        return p_One->Source.Size > p_Two->Source.Size;
    });
    return order;
}

/// Files that are read side by side. What was read of a group is lost when the run ends before it
/// is whole, so that large files have groups of their own.
std::vector<std::vector<BuildFile*>> GroupsOf(std::vector<BuildFile*> const& p_Files)
{
    constexpr qint64 c_GroupBytes = 512LL * 1024 * 1024;

    std::vector<std::vector<BuildFile*>> groups;
    qint64 bytes = 0;
    for (BuildFile* const file : p_Files) {
        bytes += file->Source.Size;
        if (groups.empty() || bytes > c_GroupBytes ||
            groups.back().size() == SourceReader::c_MostFiles) {
            groups.emplace_back();
            bytes = file->Source.Size;
        }
        groups.back().push_back(file);
    }
    return groups;
}

} // namespace

Publication::Publication(PublishOptions const& p_Options, PublicationObserver& p_Observer)
    : Options(p_Options)
    , Observer(p_Observer)
    , AppFolder(p_Options.Output + QLatin1Char('/') + p_Options.AppId)
    , Mark(p_Options.Output)
    , Index(Mark.PrivatePath(p_Options.AppId + QStringLiteral(".index")), p_Options.Source)
    , Store(AppFolder)
    , Staging(p_Options.Output, p_Options.AppId)
    , Intake(Store, p_Options.DryRun ? nullptr : &Staging, p_Observer)
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
    Scanned = std::chrono::system_clock::now().time_since_epoch();
    std::vector<BuildFile> files = SourceListing::PublishedFiles(Options, rules, Observer);
    SourceListing::CheckGameExecutable(Options, files, Observer);

    // What is planned with the tree must hold until it is done: nobody else changes it meanwhile.
    std::unique_ptr<TreeTransaction> tree;
    if (!Options.DryRun)
        tree = std::make_unique<TreeTransaction>(Options.Output);
    try {
        Publish(rules, files, tree.get());
    } catch (Failure const&) {
        // On a full disk others need the room more than the next run needs what this one staged.
        if (QStorageInfo(Options.Output).bytesAvailable() < c_LeastRoom)
            Staging.Remove();
        throw;
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
    if (!Options.DryRun)
        SignatureRecord(Options.Output).CheckMayChange(Options.Signing);
    ServerLists::CheckBuild(Options);
}

void Publication::Publish(RuleSet const& p_Rules, std::vector<BuildFile>& p_Files,
                          TreeTransaction* p_Tree)
{
    if (p_Tree)
        Staging.Sift();
    Hash(p_Files);
    if (Options.ReadStore)
        CheckStore(p_Files);
    PublicationPlan const plan(Options, p_Rules, p_Files, Store);
    Count(p_Files, plan);
    // What is not signed as it should be is published anew, signatures and all.
    if (Options.IfChanged &&
        (!p_Tree || TreeSigner(Options.Output, Options.AppId, Options.Signing).IsComplete()))
        Summary.UnchangedBuild = plan.UnchangedBuild(p_Rules, p_Files);
    if (!p_Tree) {
        if (Summary.UnchangedBuild.isNull())
            Summary.WouldWrite = plan.TreeFiles();
        return;
    }
    if (Summary.UnchangedBuild.isNull())
        Write(plan, *p_Tree);
    Staging.Remove();
}

void Publication::Hash(std::vector<BuildFile>& p_Files)
{
    HashJournal journal(Staging.JournalPath(), Options.Source);
    if (Options.ReadIndex)
        TakeFromIndex(p_Files, journal);
    std::vector<BuildFile*> const order = UnhashedLargestFirst(p_Files);
    qint64 bytes = 0;
    for (BuildFile const* const file : order)
        bytes += file->Source.Size;
    Observer.PhaseStarted(QStringLiteral("Reading"), bytes);
    bool const isNoted = Options.WriteIndex && !Options.DryRun;
    std::vector<std::vector<BuildFile*>> const groups = GroupsOf(order);
    ParallelFor(
        groups.size(),
        [&](std::size_t p_Index) {
            std::vector<SourceFile const*> sources;
            for (BuildFile const* const file : groups[p_Index])
                sources.push_back(&file->Source);
            std::vector<QString> const digests = Intake.Read(sources);
            for (std::size_t i = 0; i < digests.size(); ++i) {
                BuildFile& file = *groups[p_Index][i];
                file.Md5 = digests[i];
                if (isNoted && IsSettled(file.Source, Scanned)) {
                    Staging.Make();
                    journal.Add(file);
                }
            }
        },
        Options.Jobs);
    if (isNoted && !order.empty())
        Index.Write(p_Files, Scanned);
}

void Publication::TakeFromIndex(std::vector<BuildFile>& p_Files, HashJournal const& p_Journal)
{
    if (!Index.FillIn(p_Files)) {
        Observer.Warned(Index.FileName() +
                        QStringLiteral(": the index is damaged, so every file is read again"));
    }
    p_Journal.FillIn(p_Files);
    for (BuildFile& file : p_Files) {
        if (file.Md5.isEmpty())
            continue;
        file.IsIndexed = true;
        ++Summary.IndexedFiles;
        Summary.IndexedBytes += file.Source.Size;
    }
}

void Publication::CheckStore(std::vector<BuildFile> const& p_Files)
{
    QSet<QString> known;
    QStringList held;
    qint64 bytes = 0;
    for (BuildFile const& file : p_Files) {
        if (known.contains(file.Md5) || !Store.Holds(file.Md5, file.Source.Size))
            continue;
        known.insert(file.Md5);
        held += file.Md5;
        bytes += file.Source.Size;
    }
    Observer.PhaseStarted(QStringLiteral("Reading the tree"), bytes);
    std::vector<QString> problems(static_cast<std::size_t>(held.size()));
    ParallelFor(
        problems.size(),
        [&](std::size_t p_Index) {
            QString const md5 = held[static_cast<int>(p_Index)];
            problems[p_Index] = ProblemOfContent(
                Store.PathOf(md5), md5, [this](qint64 p_Bytes) { Observer.BytesRead(p_Bytes); });
        },
        Options.Jobs);
    for (std::size_t i = 0; i < problems.size(); ++i) {
        if (problems[i].isNull())
            continue;
        QString const md5 = held[static_cast<int>(i)];
        Store.Distrust(md5);
        Observer.Warned(
            QStringLiteral("%1: is written anew: %2").arg(Store.PathOf(md5), problems[i]));
    }
}

void Publication::Write(PublicationPlan const& p_Plan, TreeTransaction& p_Tree)
{
    // First of all, so that whatever is left of a run is known as the publisher's own.
    if (!Mark.IsThere())
        p_Tree.AddText(TreeMark::Text(), Mark.Path());
    StageRest(p_Plan.Content);
    for (BuildFile const& file : p_Plan.Content)
        p_Tree.Add(Staging.PathOf(file.Md5), Store.PathOf(file.Md5));
    if (!p_Plan.Manifest.empty())
        p_Tree.AddText(p_Plan.Record.Content, p_Plan.Record.Target);
    TreeSigner(Options.Output, Options.AppId, Options.Signing).Commit(p_Tree, p_Plan.Texts());
}

/// Content that was not copied while it was read: its digest came from the index, or the tree has
/// other content of its size.
void Publication::StageRest(std::vector<BuildFile> const& p_Content)
{
    std::vector<BuildFile const*> rest;
    qint64 bytes = 0;
    for (BuildFile const& file : p_Content) {
        if (Staging.Holds(file.Md5, file.Source.Size))
            continue;
        rest.push_back(&file);
        bytes += file.Source.Size;
    }
    Observer.PhaseStarted(QStringLiteral("Copying"), bytes);
    ParallelFor(
        rest.size(), [&](std::size_t p_Index) { StageAgain(*rest[p_Index]); }, Options.Jobs);
}

void Publication::StageAgain(BuildFile const& p_File)
{
    // The manifest must be right also when a file was changed without a trace in its times.
    if (Intake.Stage(p_File.Source) == p_File.Md5)
        return;
    if (p_File.IsIndexed) {
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
