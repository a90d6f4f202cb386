#include "Tests/Support/GameWithServer.hpp"

namespace Varnholt::TestSupport {

GameWithServer::GameWithServer(QString const& p_Folder, QString const& p_AppId)
    : GameFolder(p_Folder)
    , Content(p_AppId)
{
}

QStringList GameWithServer::Wrong(QString const& p_Locale) const
{
    QStringList wrong;
    for (SampleFile const& file : Content.Files) {
        bool const wanted = file.Locale.isEmpty() || file.Locale == p_Locale;
        if (wanted ? !Has(file.Path) || Read(file.Path) != file.Bytes : Has(file.Path))
            wrong += file.Path;
    }
    return wrong;
}

QStringList GameWithServer::Requested(ScriptedServer const& p_Server) const
{
    QString const prefix = Content.ServerPath(QString());
    std::size_t const forgotten = &p_Server == &Server ? Forgotten : 0;
    QStringList paths;
    for (RecordedRequest const& request : p_Server.Requests())
        if (static_cast<std::size_t>(request.Number) >= forgotten &&
            request.Path.startsWith(prefix))
            paths += request.Path.mid(prefix.size());
    return paths;
}

QStringList GameWithServer::Requested() const
{
    QStringList paths = Requested(Server);
    paths.sort();
    return paths;
}

int GameWithServer::Requests(QString const& p_File) const
{
    return Server.Count(Content.ServerPath(p_File));
}

} // namespace Varnholt::TestSupport
