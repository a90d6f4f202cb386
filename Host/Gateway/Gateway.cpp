#include "Host/Gateway/Gateway.hpp"

namespace Varnholt::Gateway {

class Gateway::Implementation {};

Gateway::Gateway(GatewayOptions const&) {}
Gateway::~Gateway() = default;
std::string Gateway::BaseUrl() const
{
    return {};
}
void Gateway::BeginRun(Source, Documents) {}
void Gateway::EndRun() {}
Gateway::Documents Gateway::Fetched() const
{
    return {};
}
void Gateway::Plan(std::vector<PlannedFile>) {}
void Gateway::AskSizes(std::vector<PlannedFile>) {}
std::optional<std::uint64_t> Gateway::SizeOf(std::string const&) const
{
    return {};
}
std::optional<FetchProblem> Gateway::ProblemOf(std::string const&) const
{
    return {};
}
std::optional<FetchProblem> Gateway::LatestProblem() const
{
    return {};
}
void Gateway::Reject(std::string const&) {}
void Gateway::Pause() {}
void Gateway::Continue() {}
void Gateway::SetRateLimit(std::uint64_t) {}
void Gateway::SetConnections(int) {}
GatewaySnapshot Gateway::Snapshot() const
{
    return {};
}
std::vector<std::string> Gateway::Servers() const
{
    return {};
}
void Gateway::Ask(Question, std::function<void(Reply)>) {}

} // namespace Varnholt::Gateway
