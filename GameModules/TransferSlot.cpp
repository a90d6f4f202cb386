#include "GameModules/TransferSlot.hpp"

#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"

namespace Varnholt::Launcher {

TransferSlot::TransferSlot(Transfer& p_Current)
    : Current(p_Current)
{
}

void TransferSlot::SetAside()
{
    if (Current != nullptr)
        Aside.insert(Current);
    Current = nullptr;
}

void TransferSlot::Replace()
{
    if (Current != nullptr)
        Current->Abort();
    SetAside();
}

void TransferSlot::StopAside()
{
    for (Transfer const aside : Aside)
        aside->Abort();
}

bool TransferSlot::Retire(Transfer p_Transfer)
{
    Aside.erase(p_Transfer);
    if (Current != p_Transfer)
        return false;
    Current = nullptr;
    return true;
}

bool TransferSlot::MayStart()
{
    if (Current == nullptr)
        return true;
    StartIsOwed = Current->Aborted.load();
    return false;
}

} // namespace Varnholt::Launcher
