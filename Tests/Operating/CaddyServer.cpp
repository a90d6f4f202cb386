#include "Tests/Operating/CaddyServer.hpp"

#include "Tests/Support/FileTools.hpp"

namespace Varnholt::TestSupport {

CaddyServer::CaddyServer(Replacements const& p_Replacements)
    : WebServer(QStringLiteral(VARNHOLT_CADDY_FILE), QStringLiteral("Caddyfile"), p_Replacements)
{
    Start();
}

WebServer::Replacements CaddyServer::ListenReplacements() const
{
    // Whatever name it is asked for.
    return {{"http://content.example.net", QStringLiteral("http://:%1").arg(Port())}};
}

QString CaddyServer::Complete(QString const& p_Text) const
{
    // Its control port is one for the whole machine; what it keeps for itself belongs here.
    return QStringLiteral(
               "{\n\tadmin off\n\tdefault_bind 127.0.0.1\n\tstorage file_system %1\n}\n%2")
        .arg(Place("storage"), p_Text);
}

QStringList CaddyServer::Arguments(QString const& p_Configuration) const
{
    return {"run", "--config", p_Configuration, "--adapter", "caddyfile"};
}

bool CaddyServer::HasItsPort() const
{
    return ReadFile(Place("error.log")).contains("serving initial configuration");
}

} // namespace Varnholt::TestSupport
