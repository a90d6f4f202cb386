#include "Host/Core/Jobs/RunControl.hpp"

#include "Host/Core/Folder/FileDiagnosis.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"

#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// What the module repeats before it gives files up, all of them together.
constexpr quint32 c_ModuleRestarts = 5;
constexpr int c_MostPasses = 5;
constexpr std::size_t c_MostPassedOver = 20;

} // namespace

/// Called when the module has fallen silent: finds out where it stopped.
void RunControl::OnQuiet()
{
    Launcher::StandartApplication& module = Context.Module;
    Context.Watch.Reset();
    qint32 mode = 0;
    Launcher::StandartApplication::Entries stopped;
    {
        QMutexLocker const lock(&module.RunMutex);
        mode = module.UISetting.Download.Mode;
        if (module.CurrentDownloadIndex < module.FilesToDownload.size())
            stopped = {module.FilesToDownload[module.CurrentDownloadIndex]};
    }
    // One query without an answer and the size pass never ends.
    if (mode == Launcher::ApplicationUISetting::ModeAskingSizes && !stopped.empty())
        return Fail(LatestFailure());
    if (!stopped.empty())
        return PassOver(stopped.front());
    Verify();
}

/// Called for a file that could not even be begun, at which the module stops: what is behind it
/// shall arrive all the same.
void RunControl::PassOver(Launcher::ApplicationManifestFileEntry const& p_Entry)
{
    Failure const failure =
        FileDiagnosis(Folder(), Context.Door, Context.Options.FreeBytes).Explain({p_Entry});
    PassedOver.insert(p_Entry.Path);
    // The next one would fare no better, or there is no end of them.
    bool const isAlone = failure.Kind != FailureKind::DiskFull &&
                         failure.Kind != FailureKind::FolderUnwritable && !failure.IsNetwork();
    if (!isAlone || PassedOver.size() > c_MostPassedOver)
        return Fail(failure);
    if (!Blocked)
        Blocked = failure;
    if (!Context.Module.PassOverFile())
        Verify();
}

void RunControl::Verify()
{
    Launcher::StandartApplication& module = Context.Module;
    auto missing = MissingFiles(module.Manifest, Folder(), module.GetAppLocale());
    missing.erase(
        std::remove_if(missing.begin(), missing.end(),
                       [this](auto const& p_Entry) { return PassedOver.count(p_Entry.Path) != 0; }),
        missing.end());
    if (missing.empty() && Blocked)
        return Fail(*Blocked);
    if (missing.empty() && module.DownloadRetryCount < c_ModuleRestarts)
        return Finish();
    if (missing.empty()) // a file that was given up may still have its old content
        return Inspect(true);

    // The module has one budget of repetitions for all files: one bad file takes it from the rest.
    bool const isNextFromOthers = ServersBehind() > LastBehind;
    bool const mayHelp = !WantsEveryFile || missing.size() < LastMissing || isNextFromOthers;
    bool const isSettled = WantsEveryFile && missing.size() == 1 && !isNextFromOthers;
    if (mayHelp && !isSettled && ++Passes < c_MostPasses) {
        LastMissing = WantsEveryFile ? missing.size() : LastMissing;
        LastBehind = ServersBehind();
        module.DownloadRetryCount = 0;
        return BeginRepair();
    }
    Fail(FileDiagnosis(Folder(), Context.Door, Context.Options.FreeBytes).Explain(missing));
}

/// A game whose files are partly elsewhere, where the module leaves them alone, is not complete.
std::optional<Failure> RunControl::LinkFailure() const
{
    Launcher::StandartApplication& module = Context.Module;
    auto const link = LinkOnTheWay(module.Manifest, Folder(), module.GetAppLocale());
    if (!link)
        return std::nullopt;
    return Failure{FailureKind::LinkLeadsOut, link->Path, link->Target};
}

} // namespace Varnholt::Host
