#include "Host/Gateway/TransferLoop.hpp"

#include <algorithm>
#include <mutex>
#include <utility>

namespace Varnholt::Gateway {

namespace {

CURLM* NewMulti()
{
    static std::once_flag s_Once;
    std::call_once(s_Once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    return curl_multi_init();
}

} // namespace

TransferLoop::TransferLoop(GatewayOptions const& p_Options)
    : Options(p_Options)
    , Multi(NewMulti())
{
    constexpr long c_KeptConnections = 64;
    curl_multi_setopt(Multi, CURLMOPT_MAXCONNECTS, c_KeptConnections);
}

TransferLoop::~TransferLoop()
{
    for (auto const& row : Transfers)
        curl_multi_remove_handle(Multi, row.second->Handle());
    Transfers.clear();
    Cancelled.clear();
    curl_multi_cleanup(Multi);
}

TransferLoop::Id TransferLoop::Start(TransferRequest p_Request, TransferEvents p_Events)
{
    auto transfer = std::make_unique<Transfer>(std::move(p_Request), std::move(p_Events), Options);
    curl_multi_add_handle(Multi, transfer->Handle());
    Transfers.emplace(++LastId, std::move(transfer));
    return LastId;
}

void TransferLoop::Cancel(Id p_Transfer)
{
    auto const found = Transfers.find(p_Transfer);
    if (found == Transfers.end())
        return;
    curl_multi_remove_handle(Multi, found->second->Handle());
    Cancelled.push_back(std::move(found->second));
    Transfers.erase(found);
}

void TransferLoop::ResumePaused()
{
    std::vector<Transfer*> paused;
    for (auto const& row : Transfers)
        if (row.second->IsPaused())
            paused.push_back(row.second.get());
    for (Transfer* const transfer : paused)
        transfer->Resume();
}

void TransferLoop::Run(std::function<TimePoint()> const& p_OnTurn)
{
    while (!Stopping) {
        TimePoint const next = p_OnTurn();
        Cancelled.clear();
        auto const wait = MillisecondsBetween(Clock::now(), next) + Milliseconds(1);
        int const most = static_cast<int>(std::clamp<std::int64_t>(wait.count(), 0, 1'000));
        curl_multi_poll(Multi, nullptr, 0, most, nullptr);
        Perform();
    }
}

void TransferLoop::Perform()
{
    int running = 0;
    curl_multi_perform(Multi, &running);
    int left = 0;
    while (CURLMsg const* const message = curl_multi_info_read(Multi, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* const easy = message->easy_handle;
        CURLcode const code = message->data.result;
        auto const found =
            std::find_if(Transfers.begin(), Transfers.end(),
                         [easy](auto const& p_Row) { return p_Row.second->Handle() == easy; });
        if (found == Transfers.end())
            continue;
        std::unique_ptr<Transfer> const transfer = std::move(found->second);
        Transfers.erase(found);
        curl_multi_remove_handle(Multi, easy);
        transfer->End(code);
    }
}

void TransferLoop::Wake()
{
    curl_multi_wakeup(Multi);
}

void TransferLoop::Stop()
{
    Stopping = true;
    Wake();
}

} // namespace Varnholt::Gateway
