#include "Host/Core/Jobs/PreviewInstallJob.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

std::optional<Failure> PreviewInstallJob::Prepare()
{
    Result.Folder = FolderCheck::Normalized(Request.Argument);
    return std::nullopt;
}

void PreviewInstallJob::OnBuildKnown()
{
    InstallRecord const& record = Context.Record;
    bool const isElsewhere = record.IsInstalled() && record.Folder() != Where();
    bool const isMoved = isElsewhere && !QFileInfo::exists(record.Folder()) &&
                         HoldsGame(Context.Module.Manifest, Where(), Context.Module.GetAppLocale());
    Result.Warnings = FolderCheck::Objections(Where(), isMoved ? Where() : record.Folder());
    if (isElsewhere && !isMoved)
        Result.Warnings.push_back({FailureKind::InstalledElsewhere, record.Folder(), {}});
    Result.Locales = Context.Module.GetAvailableLocales();
    MeasureSpace();
    CheckJob::OnBuildKnown();
}

void PreviewInstallJob::Tell()
{
    Result.Amount = AmountOf(Result.Findings);
    Result.Findings.clear(); // a whole build's would be no news
    if (auto const failure = RoomCheck::BeforeDownload(Result.Space))
        Result.Warnings.push_back(*failure);
    Finish();
}

} // namespace Varnholt::Host
