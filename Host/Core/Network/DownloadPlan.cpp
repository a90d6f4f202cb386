#include "Host/Core/Network/DownloadPlan.hpp"

namespace Varnholt::Host {

DownloadPlan::DownloadPlan(ModuleView const& p_View, NetworkDoor& p_Door)
    : View(p_View)
    , Door(p_Door)
{
}

void DownloadPlan::Look(QString const& p_Folder)
{
    auto const mark = View.Mark();
    if (!mark || mark == Last)
        return;
    Last = mark;
    std::vector<Gateway::PlannedFile> plan;
    for (ModuleView::Entry const& entry : View.Remaining())
        plan.push_back(Door.Planned(entry, p_Folder + entry.Path));
    Door->Plan(plan, mark->AsksSizes);
}

} // namespace Varnholt::Host
