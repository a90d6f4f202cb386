#include "Host/Core/SizeSurvey.hpp"

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
    Door->AskSizes(std::move(asked));
    SinceAnswer.start();
}

bool SizeSurvey::Look()
{
    std::size_t const before = Next;
    while (Next < Files.size() && Take(Files[Next]))
        ++Next;
    auto const snapshot = Door->Snapshot();
    if (Next != before || snapshot.SizesKnown != Known)
        SinceAnswer.start();
    Known = snapshot.SizesKnown;
    bool const isDone = Next == Files.size() || snapshot.GaveUp || SinceAnswer.hasExpired(Patience);
    for (std::size_t i = 0; isDone && i < Files.size(); ++i)
        Take(Files[i]);
    return isDone;
}

bool SizeSurvey::Take(FileFinding& p_Finding) const
{
    auto const size = Door.SizeOf(p_Finding.Location);
    if (!size)
        return Door.ProblemOf(p_Finding.Location).has_value();
    qint64 const there =
        QFileInfo(Launcher::Helper::Paths::PartFile(Folder + p_Finding.Path)).size();
    p_Finding.Bytes = std::max<qint64>(0, static_cast<qint64>(*size) - there);
    return true;
}

} // namespace Varnholt::Host
