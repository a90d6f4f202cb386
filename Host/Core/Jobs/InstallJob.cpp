#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Jobs/CompletionJob.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Varnholt::Host {

namespace {

/// Brings the build into a folder of the user's choice, and records that as the installation.
class InstallJob : public CompletionJob {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::InstallJob)

public:
    using CompletionJob::CompletionJob;

protected:
    std::optional<Failure> Prepare() override
    {
        QString const folder = FolderCheck::Normalized(Request.Argument);
        InstallRecord const& record = Context.Record;
        bool const isElsewhere =
            record.IsInstalled() && record.Folder() != folder && !Request.Confirmed;
        // Whether it was moved here, `BeginFiles` sees by the build's files.
        MayBeMoved = isElsewhere && !QFileInfo::exists(record.Folder()) &&
                     QFileInfo(folder).isDir() && !QDir(folder).isEmpty();
        if (isElsewhere && !MayBeMoved)
            return Failure{FailureKind::InstalledElsewhere, record.Folder(), {}};
        return FolderCheck::ForInstall(folder, MayBeMoved ? folder : record.Folder(),
                                       Request.Confirmed);
    }

    void BeginFiles() override
    {
        QString const folder = FolderCheck::Normalized(Request.Argument);
        QString const former = Context.Record.Folder();
        Launcher::StandartApplication& module = Context.Module;
        if (MayBeMoved && !HoldsGame(module.Manifest, folder, module.GetAppLocale()))
            return Fail({FailureKind::InstalledElsewhere, former, {}});
        if (MayBeMoved)
            NoticeOnce({NoticeKind::GameFoundAgain, folder, former});
        if (!QDir().mkpath(folder))
            return Fail({FailureKind::FolderUnwritable, folder, tr("it cannot be created")});
        if (auto const failure = FolderCheck::ForWriting(folder))
            return Fail(*failure);
        if (auto const failure = LockFolder(folder))
            return Fail(*failure);
        Context.Gate.SetPreview(false);
        DistrustLists();
        Context.Trust.ForgetGame(); // what else lies there is nobody's until the end
        Context.Record.MarkUnfinished();
        Context.Gate.Open();
        module.Install(folder, false);
    }

private:
    bool MayBeMoved = false; ///< out of its recorded folder into this one
};

} // namespace

JobMaker const MakeInstallJob = MakeJob<InstallJob>;

} // namespace Varnholt::Host
