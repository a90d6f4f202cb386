#include "Host/Core/Folder/FileDiagnosis.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"
#include "Host/Core/Network/FetchFailure.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

QString Named(FileDiagnosis::Entries const& p_Missing)
{
    constexpr std::size_t c_MostNamed = 10;

    if (p_Missing.size() == 1)
        return FileDiagnosis::tr("the file %1 could not be fetched").arg(p_Missing.front().Path);
    QStringList names;
    for (std::size_t i = 0; i < std::min(p_Missing.size(), c_MostNamed); ++i)
        names += p_Missing[i].Path;
    if (p_Missing.size() > c_MostNamed)
        names += FileDiagnosis::tr("and %1 more").arg(p_Missing.size() - c_MostNamed);
    return FileDiagnosis::tr("%1 files could not be fetched: %2")
        .arg(p_Missing.size())
        .arg(names.join(QStringLiteral(", ")));
}

constexpr int c_NotFetched = 2;

/// What is told first: what stands in a file's way comes before the disk, and that before servers.
int RankOf(FailureKind p_Kind)
{
    if (p_Kind == FailureKind::FilesGivenUp || p_Kind == FailureKind::FilesUnreachable)
        return c_NotFetched;
    return p_Kind == FailureKind::DiskFull ? 1 : 0;
}

} // namespace

FileDiagnosis::FileDiagnosis(QString p_Folder, NetworkDoor const& p_Door,
                             std::function<qint64(QString const&)> p_FreeBytes)
    : Folder(std::move(p_Folder))
    , Door(p_Door)
    , FreeBytes(std::move(p_FreeBytes))
{
}

FileDiagnosis::Diagnosis FileDiagnosis::Explain(Entries const& p_Missing) const
{
    std::map<QString, Failure> const onFullDisks = OnFullDisks(p_Missing);
    std::vector<FileFinding> files;
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Missing) {
        files.emplace_back(Folder, entry, FileFinding::Cause::Different);
        auto const onFullDisk = onFullDisks.find(entry.Path);
        if (auto const failure = WhatStandsInTheWay(entry.Path))
            files.back().Problem = *failure;
        else if (onFullDisk != onFullDisks.end())
            files.back().Problem = onFullDisk->second;
        else
            files.back().Problem = NotFetched({entry});
    }
    auto const worst =
        std::min_element(files.begin(), files.end(), [](auto& p_File, auto& p_Other) {
            return RankOf(p_File.Problem.Kind) < RankOf(p_Other.Problem.Kind);
        });
    bool const isLocal = RankOf(worst->Problem.Kind) < c_NotFetched;
    Failure const whole = isLocal ? worst->Problem : NotFetched(p_Missing);
    return {whole, files};
}

/// Why the servers gave no usable content for files that nothing stands in the way of.
Failure FileDiagnosis::NotFetched(Entries const& p_Missing) const
{
    for (Launcher::ApplicationManifestFileEntry const& entry : p_Missing) {
        auto const problem = Door.ProblemOf(entry.Location);
        if (!problem)
            continue;
        bool const isAnswer = problem->Kind == Gateway::FetchProblem::Type::Refused ||
                              problem->Kind == Gateway::FetchProblem::Type::Unusable;
        auto const kind = isAnswer ? FailureKind::FilesGivenUp : FailureKind::FilesUnreachable;
        return {kind, Named(p_Missing), tr("%1 for %2").arg(CauseText(*problem), UrlOf(*problem))};
    }
    return {FailureKind::FilesGivenUp, Named(p_Missing),
            tr("what the server gave is not what the build announces")};
}

std::optional<Failure> FileDiagnosis::WhatStandsInTheWay(QString const& p_Path) const
{
    QString const path = Folder + p_Path;
    if (QFileInfo(path).isDir())
        return Failure{FailureKind::FolderBlocksFile, path, {}};
    if (QFileInfo::exists(path)) // the module removes the old file before it places the new one
        return Failure{FailureKind::FileUnwritable, path, tr("the old file cannot be replaced")};
    QString const part = Launcher::Helper::Paths::PartFile(path);
    if (QFileInfo(part).isDir())
        return Failure{FailureKind::FileUnwritable, path, tr("a folder stands at %1").arg(part)};
    if (QFileInfo::exists(part) && !QFile(part).open(QIODevice::WriteOnly | QIODevice::Append))
        return Failure{FailureKind::FileUnwritable, path, tr("%1 cannot be opened").arg(part)};

    QString above = QFileInfo(path).path();
    while (!QFileInfo::exists(above) && above.size() > Folder.size())
        above = QFileInfo(above).path();
    if (!QFileInfo(above).isDir())
        return Failure{FailureKind::FileUnwritable, path, tr("%1 is no folder").arg(above)};
    auto unwritable = FolderCheck::ForWriting(above);
    // A full disk refuses new files too; `OnFullDisks` has the better sentence for it.
    if (FreeBytes(above) == 0)
        return std::nullopt;
    if (unwritable)
        return unwritable;
    // What remains is the name: too long, or with characters that the volume does not take.
    if (QFileInfo::exists(part) || above != QFileInfo(path).path())
        return std::nullopt;
    QFile probe(part);
    if (!probe.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return Failure{FailureKind::FileUnwritable, path, probe.errorString()};
    probe.remove();
    return std::nullopt;
}

/// The failures by the paths of the files.
std::map<QString, Failure> FileDiagnosis::OnFullDisks(Entries const& p_Missing) const
{
    auto const sizeOf = [this](QString const& p_Location) { return Door.SizeOf(p_Location); };
    std::map<QString, Failure> failures;
    for (GameVolumes::Share const& share : GameVolumes::Of(Folder, p_Missing)) {
        if (share.Files.empty())
            continue;
        // The last one: the game folder's own volume comes first in any case.
        VolumeSpace const space =
            GameVolumes::SpaceFor(Folder, share.Files, sizeOf, FreeBytes).back();
        if (!space.IsKnown() || (space.After() >= 0 && space.Free >= RoomCheck::c_NearlyNothing))
            continue;
        for (Launcher::ApplicationManifestFileEntry const& entry : share.Files)
            failures.emplace(entry.Path, RoomCheck::Full(share.Folder, space.Free, space.Needed));
    }
    return failures;
}

} // namespace Varnholt::Host
