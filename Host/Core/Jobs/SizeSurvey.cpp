#include "Host/Core/Jobs/SizeSurvey.hpp"

#include "Launcher/Helper/Paths.hpp"

#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

SizeSurvey::SizeSurvey(std::vector<FileFinding> p_Findings, NetworkDoor& p_Door, QString p_Folder,
                       int p_Patience)
    : Files(std::move(p_Findings))
    , Door(p_Door)
    , Folder(std::move(p_Folder))
    , Patience(p_Patience)
{
    std::vector<Gateway::PlannedFile> asked;
    for (FileFinding const& finding : Files) {
        Gateway::PlannedFile file;
        file.Path = Door.PathOf(finding.Location);
        file.OfDefaultServer = finding.IsDefaultServerOnly;
        asked.push_back(file);
    }
    Door->AskSizes(asked);
    SinceAnswer.start();
}

bool SizeSurvey::Look()
{
    auto const snapshot = Door->Snapshot();
    if (snapshot.SizesKnown != Settled)
        SinceAnswer.start();
    Settled = snapshot.SizesKnown;
    bool const isDone =
        Settled == Files.size() || snapshot.GaveUp || SinceAnswer.hasExpired(Patience);
    for (std::size_t i = 0; isDone && i < Files.size(); ++i)
        if (auto const size = Door.SizeOf(Files[i].Location)) {
            QString const part = Launcher::Helper::Paths::PartFile(Folder + Files[i].Path);
            Files[i].Bytes =
                std::max<qint64>(0, static_cast<qint64>(*size) - QFileInfo(part).size());
        }
    return isDone;
}

} // namespace Varnholt::Host
