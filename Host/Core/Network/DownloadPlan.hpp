#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"

#include <QString>

#include <cstddef>

namespace Varnholt::Host {

/// Tells the door which files the module is going to ask for. Module thread.
class DownloadPlan {
public:
    DownloadPlan(Launcher::StandartApplication& p_Module, NetworkDoor& p_Door);

    /// Tells the list when it is another one than at the look before. \param p_Folder of the game,
    /// ends in "/"
    void Look(QString const& p_Folder);
    /// The next look tells the list in any case.
    void Forget() { Last = {}; }

private:
    /// What tells one list of a run from another, and what for; the texts share those of the list.
    struct Mark {
        std::size_t Count = 0;
        bool IsBase = false;
        bool AsksSizes = false;
        QString First;
        QString Latest;

        bool operator==(Mark const& p_Other) const
        {
            return Count == p_Other.Count && IsBase == p_Other.IsBase &&
                   AsksSizes == p_Other.AsksSizes && First == p_Other.First &&
                   Latest == p_Other.Latest;
        }
    };

    Launcher::StandartApplication& Module;
    NetworkDoor& Door;
    Mark Last;
};

} // namespace Varnholt::Host
