#pragma once

#include "Host/Core/Module/ModuleView.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Host {

/// Tells the door which files the module is going to ask for. Module thread.
class DownloadPlan {
public:
    DownloadPlan(ModuleView const& p_View, NetworkDoor& p_Door);

    /// Tells the list when it is another one than at the look before. \param p_Folder of the game,
    /// ends in "/"
    void Look(QString const& p_Folder);
    /// The next look tells the list in any case.
    void Forget() { Last.reset(); }

private:
    ModuleView const& View;
    NetworkDoor& Door;
    std::optional<ModuleView::ListMark> Last;
};

} // namespace Varnholt::Host
