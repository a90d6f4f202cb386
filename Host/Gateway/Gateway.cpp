#include "Host/Gateway/Gateway.hpp"

#include "Host/Gateway/DoorServer.hpp"
#include "Host/Gateway/Exchange.hpp"

#include <utility>

namespace Varnholt::Gateway {

class Gateway::Implementation {
public:
    explicit Implementation(GatewayOptions const& p_Options)
        : Inner(p_Options)
        , Door(Inner)
        , IsListening(Door.Listen())
    {
        Inner.Begin(IsListening ? Door.Name() + "/m" : std::string());
    }

    ~Implementation() { Inner.Close(); }

    Exchange Inner;
    DoorServer Door;
    bool IsListening;
};

Gateway::Gateway(GatewayOptions const& p_Options)
    : Details(std::make_unique<Implementation>(p_Options))
{
}

Gateway::~Gateway() = default;

std::string Gateway::BaseUrl() const
{
    return Details->IsListening ? Details->Door.Address() : std::string();
}

void Gateway::BeginRun(Source p_Source, Documents p_Copies, std::shared_ptr<DocumentJudge> p_Trust)
{
    Details->Inner.BeginRun(p_Source, std::move(p_Copies), std::move(p_Trust));
}

void Gateway::EndRun()
{
    Details->Inner.EndRun();
}

void Gateway::Want(std::string const& p_Path)
{
    Details->Inner.Want(p_Path);
}

Gateway::Documents Gateway::Fetched() const
{
    return Details->Inner.Fetched();
}

void Gateway::Plan(std::vector<PlannedFile> const& p_Files, bool p_SizesFirst)
{
    Details->Inner.Plan(p_Files, p_SizesFirst);
}

void Gateway::AskSizes(std::vector<PlannedFile> const& p_Files)
{
    Details->Inner.AskSizes(p_Files);
}

std::optional<std::uint64_t> Gateway::SizeOf(std::string const& p_Path) const
{
    return Details->Inner.SizeOf(p_Path);
}

std::optional<FetchProblem> Gateway::ProblemOf(std::string const& p_Path) const
{
    return Details->Inner.ProblemOf(p_Path);
}

std::optional<FetchProblem> Gateway::LatestProblem() const
{
    return Details->Inner.LatestProblem();
}

void Gateway::Reject(std::string const& p_Path)
{
    Details->Inner.Reject(p_Path);
}

void Gateway::Pause()
{
    Details->Inner.SetPaused(true);
}

void Gateway::Continue()
{
    Details->Inner.SetPaused(false);
}

void Gateway::SetRateLimit(std::uint64_t p_BytesPerSecond)
{
    Details->Inner.SetRateLimit(p_BytesPerSecond);
}

void Gateway::SetConnections(int p_Connections)
{
    Details->Inner.SetConnections(p_Connections);
}

GatewaySnapshot Gateway::Snapshot() const
{
    return Details->Inner.Snapshot();
}

std::vector<std::string> Gateway::Servers() const
{
    return Details->Inner.Servers();
}

void Gateway::Ask(Question p_Question, std::function<void(Reply)> p_OnReply)
{
    Details->Inner.Ask(std::move(p_Question), std::move(p_OnReply));
}

} // namespace Varnholt::Gateway
