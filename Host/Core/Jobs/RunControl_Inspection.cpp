#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Folder/FileDiagnosis.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

QString FileCountText(std::size_t p_Count)
{
    return p_Count == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(p_Count);
}

/// "3 files (1.2 MiB)"; "at least" when a server did not tell every size.
QString AmountText(std::vector<FileFinding> const& p_Findings)
{
    quint64 bytes = 0;
    bool known = true;
    for (FileFinding const& finding : p_Findings) {
        bytes += static_cast<quint64>(std::max<qint64>(0, finding.Bytes));
        known = known && finding.Bytes >= 0;
    }
    return QStringLiteral("%1 (%2%3)")
        .arg(FileCountText(p_Findings.size()), known ? QString() : QStringLiteral("at least "),
             ByteText(bytes));
}

FileDiagnosis::Entries EntriesOf(std::vector<FileFinding> const& p_Findings)
{
    FileDiagnosis::Entries entries;
    for (FileFinding const& finding : p_Findings) {
        Launcher::ApplicationManifestFileEntry entry;
        entry.Path = finding.Path;
        entry.Location = finding.Location;
        entries.push_back(entry);
    }
    return entries;
}

} // namespace

bool RunControl::IsInspection(RunRequest const& p_Request)
{
    return p_Request.Kind == RunRequest::Type::Check ||
           p_Request.Kind == RunRequest::Type::Verify ||
           p_Request.Kind == RunRequest::Type::AskMirrors;
}

std::optional<Failure> RunControl::InspectionPreconditions() const
{
    InstallRecord const& record = Context.Record;
    if (Request.Kind == RunRequest::Type::AskMirrors)
        return std::nullopt;
    if (!record.IsInstalled())
        return Failure{FailureKind::NotInstalled, Context.Module.GetName(), {}};
    if (!QFileInfo(record.Folder()).isDir())
        return Failure{FailureKind::FolderMissing, record.Folder(), {}};
    return std::nullopt;
}

/// Called when the build is known and the module has fallen silent.
void RunControl::BeginInspection()
{
    bool const everyFile = Request.Kind == RunRequest::Type::Verify || WantsEveryFile ||
                           Context.Record.CompletedBuild() != Context.Module.RemoteBuild;
    Inspect(everyFile);
}

void RunControl::Inspect(bool p_EveryFile)
{
    Examiner = std::make_shared<Inspection>(Context.Module.Manifest, Folder(),
                                            Context.Module.GetAppLocale(), p_EveryFile);
    CurrentStep = Step::Inspecting;
    Context.Module.EnqueueAsync([examiner = Examiner] { examiner->Run(); });
}

/// Called when every file has been looked at.
void RunControl::OnInspected()
{
    if (IsInspection(Request)) {
        Result.Findings = Examiner->Findings();
        if (auto const failure = LinkFailure())
            return Fail(*failure);
    }
    if (Examiner->Findings().empty())
        return Finish();
    if (!IsInspection(Request))
        return Fail(FileDiagnosis(Folder(), Context.Door, Context.Options.FreeBytes)
                        .Explain(EntriesOf(Examiner->Findings())));
    if (Request.Kind == RunRequest::Type::Verify)
        return Fail({FailureKind::FilesWrong, FileCountText(Result.Findings.size()), Result.Build});
    if (UsesKept) // nobody is asked
        return TellUpdate();
    Survey = std::make_unique<SizeSurvey>(Result.Findings, Context.Door, Folder(),
                                          Context.Options.StallMilliseconds);
}

void RunControl::LookAtSizes()
{
    if (!Survey->Look())
        return;
    Result.Findings = Survey->Findings();
    TellUpdate();
}

void RunControl::TellUpdate()
{
    Fail({FailureKind::UpdateAvailable, AmountText(Result.Findings), Result.Build});
}

void RunControl::AskMirrors()
{
    Launcher::StandartApplication const& module = Context.Module;
    // Of an empty file there is no piece; whether one is empty, its digest tells.
    QString const empty = QStringLiteral("D41D8CD98F00B204E9800998ECF8427E");
    auto const& files = module.Manifest.Files;
    auto const file = std::find_if(files.begin(), files.end(), [&](auto const& p_Entry) {
        return p_Entry.Md5 != empty &&
               !p_Entry.Has(Launcher::ApplicationManifestFileEntry::DefaultServerOnly);
    });
    Mirrors = std::make_unique<MirrorCheck>(
        Context.Door, Context.Door.PathOf(ManifestFile(module.RemoteBuild)),
        file == files.end() ? std::string() : Context.Door.PathOf(file->Location));
    connect(Mirrors.get(), &MirrorCheck::Finished, this, &RunControl::OnMirrorsAsked,
            Qt::QueuedConnection);
    CurrentStep = Step::Inspecting;
    Mirrors->Begin();
}

void RunControl::OnMirrorsAsked()
{
    if (CurrentStep != Step::Inspecting)
        return;
    Result.Mirrors = Mirrors->Reports();
    QStringList wrong;
    for (MirrorReport const& report : Result.Mirrors)
        if (!report.IsInOrder())
            wrong += report.Host;
    if (wrong.isEmpty())
        return Finish();
    Fail({FailureKind::MirrorsWrong,
          QStringLiteral("%1 of %2").arg(wrong.size()).arg(Result.Mirrors.size()),
          wrong.join(QStringLiteral(", "))});
}

RunSnapshot RunControl::InspectionSnapshot() const
{
    RunSnapshot snapshot;
    if (!Examiner && !Mirrors) {
        snapshot.Phase = RunPhase::Connecting;
    } else if (Mirrors) {
        snapshot.Phase = RunPhase::AskingMirrors;
    } else if (Survey) {
        snapshot.Phase = RunPhase::AskingSizes;
        snapshot.FileNumber = Survey->Answered();
        snapshot.FileCount = static_cast<quint32>(Survey->Findings().size());
    } else {
        snapshot.Phase = RunPhase::Comparing;
        snapshot.FileNumber = std::min(Examiner->FileNumber(), Examiner->FileCount());
        snapshot.FileCount = Examiner->FileCount();
    }
    return snapshot;
}

} // namespace Varnholt::Host
