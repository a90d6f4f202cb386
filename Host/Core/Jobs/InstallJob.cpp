#include "Host/Core/Jobs/InstallJob.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Varnholt::Host {

std::optional<Failure> InstallJob::Prepare()
{
    QString const folder = FolderCheck::Normalized(Request.Argument);
    InstallRecord const& record = Context.Record;
    bool const isMoved = !QFileInfo::exists(record.Folder()) && FolderCheck::HoldsGame(folder);
    if (record.IsInstalled() && record.Folder() != folder && !isMoved && !Request.Confirmed)
        return Failure{FailureKind::InstalledElsewhere, record.Folder(), {}};
    return FolderCheck::ForInstall(folder, record.Folder(), Request.Confirmed);
}

void InstallJob::BeginFiles()
{
    QString const folder = FolderCheck::Normalized(Request.Argument);
    if (!QDir().mkpath(folder))
        return Fail(
            {FailureKind::FolderUnwritable, folder,
             QCoreApplication::translate("Varnholt::Host::InstallJob", "it cannot be created")});
    if (auto const failure = FolderCheck::ForWriting(folder))
        return Fail(*failure);
    if (auto const failure = LockFolder(folder))
        return Fail(*failure);
    Context.Gate.SetPreview(false);
    DistrustLists();
    Context.Record.MarkUnfinished();
    Context.Gate.Open();
    Context.Module.Install(folder, false);
}

} // namespace Varnholt::Host
