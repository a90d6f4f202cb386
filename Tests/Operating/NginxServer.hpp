#pragma once

#include "Tests/Operating/WebServer.hpp"

namespace Varnholt::TestSupport {

/// A real nginx with one of the configurations in docs/nginx, or with any other whose servers
/// listen on port 80.
class NginxServer : public WebServer {
public:
    explicit NginxServer(QString const& p_File, Replacements const& p_Replacements = {});

private:
    Replacements ListenReplacements() const override;
    QString Complete(QString const& p_Text) const override;
    QStringList Arguments(QString const& p_Configuration) const override;
    bool HasItsPort() const override;
};

} // namespace Varnholt::TestSupport
