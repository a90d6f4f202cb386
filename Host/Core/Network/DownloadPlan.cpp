#include "Host/Core/Network/DownloadPlan.hpp"

#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::Host {

DownloadPlan::DownloadPlan(Launcher::StandartApplication& p_Module, NetworkDoor& p_Door)
    : Module(p_Module)
    , Door(p_Door)
{
}

void DownloadPlan::Look(QString const& p_Folder)
{
    Launcher::StandartApplication::Entries entries;
    {
        QMutexLocker const lock(&Module.RunMutex);
        auto const& files = Module.FilesToDownload;
        qint32 const mode = Module.UISetting.Download.Mode;
        bool const asksSizes = mode == Launcher::ApplicationUISetting::ModeAskingSizes;
        bool const mayFetch = asksSizes ||
                              mode == Launcher::ApplicationUISetting::ModeDownloading ||
                              mode == Launcher::ApplicationUISetting::ModeSuspended;
        if (files.empty() || !mayFetch)
            return; // not before the game has quit
        Mark const mark{files.size(), Module.IsDownloadingBase, asksSizes, files.front().Path,
                        files.back().Path};
        if (mark == Last)
            return;
        Last = mark;
        auto const done = std::min<std::size_t>(Module.CurrentDownloadIndex, files.size());
        entries.assign(files.begin() + static_cast<std::ptrdiff_t>(done), files.end());
    }
    std::vector<Gateway::PlannedFile> plan;
    plan.reserve(entries.size());
    for (Launcher::ApplicationManifestFileEntry const& entry : entries)
        plan.push_back(Door.Planned(entry, p_Folder + entry.Path));
    Door->Plan(std::move(plan), Last.AsksSizes);
}

} // namespace Varnholt::Host
