#include "Host/Core/DoorProxies.hpp"

#include <atomic>

namespace Varnholt::Host {

namespace {

/// Qt deletes a factory in whose place another one is put.
std::atomic<DoorProxies*> g_Installed{nullptr};

} // namespace

DoorProxies::DoorProxies(int p_Port)
    : Port(p_Port)
    , UsedSystem(QNetworkProxyFactory::usesSystemConfiguration())
    , Former(QNetworkProxy::applicationProxy())
{
}

DoorProxies::~DoorProxies()
{
    g_Installed = nullptr;
}

void DoorProxies::Install(int p_Port)
{
    auto* const factory = new DoorProxies(p_Port); // Qt's from here on
    QNetworkProxyFactory::setApplicationProxyFactory(factory);
    g_Installed = factory;
}

void DoorProxies::Remove()
{
    DoorProxies const* const factory = g_Installed;
    if (factory == nullptr)
        return;
    QNetworkProxy const former = factory->Former;
    if (factory->UsedSystem)
        QNetworkProxyFactory::setUseSystemConfiguration(true);
    else
        QNetworkProxy::setApplicationProxy(former);
}

QList<QNetworkProxy> DoorProxies::queryProxy(QNetworkProxyQuery const& p_Query)
{
    if (p_Query.peerPort() == Port && p_Query.peerHostName() == QLatin1String("127.0.0.1"))
        return {QNetworkProxy::NoProxy};
    return UsedSystem ? systemProxyForQuery(p_Query) : QList<QNetworkProxy>{Former};
}

} // namespace Varnholt::Host
