#pragma once

#include <QNetworkProxyFactory>

namespace Varnholt::Host {

/// Lets Qt reach one port of this machine without a proxy, and everything else as before. A factory
/// of the application's own is lost: one that has such a factory installs it again.
class DoorProxies : public QNetworkProxyFactory {
public:
    /// Becomes the application's factory. \param p_Port on 127.0.0.1
    static void Install(int p_Port);
    /// Puts back what the application had; nothing when it has chosen anew meanwhile.
    static void Remove();

    QList<QNetworkProxy> queryProxy(QNetworkProxyQuery const& p_Query) override;

private:
    explicit DoorProxies(int p_Port);
    ~DoorProxies() override;

    int Port;
    bool UsedSystem;      ///< the application, before
    QNetworkProxy Former; ///< of the application
};

} // namespace Varnholt::Host
