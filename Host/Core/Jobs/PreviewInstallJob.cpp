#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Jobs/CheckJob.hpp"
#include "Host/Core/Jobs/JobTable.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

namespace {

/// Finds out what an installation into a folder would fetch, and what speaks against it. Nothing
/// need be installed.
class PreviewInstallJob : public CheckJob {
public:
    using CheckJob::CheckJob;

protected:
    std::optional<Failure> Prepare() override
    {
        Result.Folder = FolderCheck::Normalized(Request.Argument);
        return std::nullopt;
    }

    void OnBuildKnown() override
    {
        InstallRecord const& record = Context.Record;
        bool const isElsewhere = record.IsInstalled() && record.Folder() != Where();
        bool const isMoved =
            isElsewhere && !QFileInfo::exists(record.Folder()) &&
            HoldsGame(Context.Module.Manifest, Where(), Context.Module.GetAppLocale());
        Result.Warnings = FolderCheck::Objections(Where(), isMoved ? Where() : record.Folder());
        if (isElsewhere && !isMoved)
            Result.Warnings.push_back({FailureKind::InstalledElsewhere, record.Folder(), {}});
        Result.Locales = Context.Module.GetAvailableLocales();
        MeasureSpace();
        CheckJob::OnBuildKnown();
    }

    bool LooksAtEveryFile() const override { return true; }
    QString Where() const override { return Result.Folder; }

    void Tell() override
    {
        Result.Amount = AmountOf(Result.Findings);
        Result.Findings.clear(); // a whole build's would be no news
        if (auto const failure = RoomCheck::BeforeDownload(Result.Space))
            Result.Warnings.push_back(*failure);
        Finish();
    }
};

} // namespace

JobMaker const MakePreviewInstallJob = MakeJob<PreviewInstallJob>;

} // namespace Varnholt::Host
