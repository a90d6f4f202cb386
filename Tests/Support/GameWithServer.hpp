#pragma once

#include "Tests/Support/GameFolder.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"

namespace Varnholt::TestSupport {

/// A game's folder, and the content server that has its build.
class GameWithServer : public GameFolder {
public:
    explicit GameWithServer(QString const& p_Folder,
                            QString const& p_AppId = QStringLiteral("pelmora_app"));

    /// Names of the build's files of a language that are missing or differ on the disk.
    QStringList Wrong(QString const& p_Locale = QStringLiteral("enUS")) const;
    /// The build's files that a server was asked for, in the order of its requests.
    QStringList Requested(ScriptedServer const& p_Server) const;
    /// The same of the content server, in alphabetical order.
    QStringList Requested() const;
    int Requests(QString const& p_File) const;
    /// Begins to count in `Requested` anew.
    void ForgetRequests() { Forgotten = Server.Requests().size(); }

    ScriptedServer Server;
    SampleContent Content;

private:
    std::size_t Forgotten = 0;
};

} // namespace Varnholt::TestSupport
