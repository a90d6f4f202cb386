#pragma once

#include "Tests/Operating/WebServer.hpp"

namespace Varnholt::TestSupport {

/// A real Caddy with docs/Caddyfile.
class CaddyServer : public WebServer {
public:
    explicit CaddyServer(Replacements const& p_Replacements);

private:
    Replacements ListenReplacements() const override;
    QString Complete(QString const& p_Text) const override;
    QStringList Arguments(QString const& p_Configuration) const override;
    bool HasItsPort() const override;
};

} // namespace Varnholt::TestSupport
