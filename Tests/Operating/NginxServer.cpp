#include "Tests/Operating/NginxServer.hpp"

#include "Tests/Support/FileTools.hpp"

namespace Varnholt::TestSupport {

NginxServer::NginxServer(QString const& p_File, Replacements const& p_Replacements)
    : WebServer(QStringLiteral(VARNHOLT_NGINX_FILE), p_File, p_Replacements)
{
    Start();
}

WebServer::Replacements NginxServer::ListenReplacements() const
{
    return {{"listen 80", "listen " + Host()}};
}

QString NginxServer::Complete(QString const& p_Text) const
{
    QString main = QStringLiteral("%1daemon off;\npid PLACE/pid;\nerror_log PLACE/error.log;\n"
                                  "events {}\nhttp {\naccess_log off;\n")
                       .arg(QLatin1String(IsRoot() ? "user root;\n" : ""));
    for (char const* const name : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        main += QStringLiteral("%1_temp_path PLACE/temp;\n").arg(QLatin1String(name));
    return main.replace("PLACE", Place({})) + p_Text + "}\n";
}

QStringList NginxServer::Arguments(QString const& p_Configuration) const
{
    return {"-p", Place({}), "-c", p_Configuration, "-e", Place("error.log")};
}

bool NginxServer::HasItsPort() const
{
    return !ReadFile(Place("pid")).isEmpty();
}

} // namespace Varnholt::TestSupport
