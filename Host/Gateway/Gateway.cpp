#include "Host/Gateway/Gateway.hpp"

#include "Host/Gateway/DoorServer.hpp"
#include "Host/Gateway/Exchange.hpp"

namespace Varnholt::Gateway {

namespace {

/// The exchange and its door.
class OpenGateway : public Exchange {
public:
    explicit OpenGateway(GatewayOptions const& p_Options)
        : Exchange(p_Options)
        , Door(*this)
        , IsListening(Door.Listen())
    {
        Begin(IsListening ? Door.Name() + "/m" : std::string());
    }
    ~OpenGateway() override { Close(); }

    std::string BaseUrl() const override { return IsListening ? Door.Address() : std::string(); }

private:
    DoorServer Door;
    bool IsListening;
};

} // namespace

std::unique_ptr<Gateway> Gateway::Create(GatewayOptions const& p_Options)
{
    return std::make_unique<OpenGateway>(p_Options);
}

} // namespace Varnholt::Gateway
