#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"

#include <QUrl>

#include <functional>

namespace Varnholt::TestSupport {

namespace {

QString const c_Done = QStringLiteral("done");

/// Where a server sends those who ask for a path, and what comes of it.
struct Redirection {
    QString Where;
    std::function<void(FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path)> Set;
    QString End = c_Done;
    QString Words = {};
};

void SendAway(FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path, int p_Status)
{
    p_Game.Server.Script(p_Path).Always(
        Answer::Redirect(QUrl(p_Other.Url(p_Path)).toEncoded(), p_Status));
}

Redirection Elsewhere(int p_Status)
{
    return {QStringLiteral("%1").arg(p_Status),
            [p_Status](FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path) {
                SendAway(p_Game, p_Other, p_Path, p_Status);
            }};
}

/// Through as many places as are allowed, or one more.
Redirection ThroughPlaces(int p_Places, QString const& p_End, QString const& p_Words)
{
    return {QStringLiteral("%1 in a row").arg(p_Places),
            [p_Places](FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path) {
                QString from = p_Path;
                for (int place = 1; place < p_Places; ++place) {
                    QString const to = QStringLiteral("/%1").arg(place) + p_Path;
                    p_Game.Server.Script(from).Always(
                        Answer::Redirect(QUrl(p_Game.Server.Url(to)).toEncoded()));
                    from = to;
                }
                p_Game.Server.Script(from).Always(
                    Answer::Redirect(QUrl(p_Other.Url(p_Path)).toEncoded()));
            },
            p_End, p_Words};
}

std::vector<Redirection> Redirections()
{
    constexpr int c_Allowed = 8;

    QString const tooOften = QStringLiteral("redirected too often");
    QString const unusable = QStringLiteral("content-invalid");
    return {Elsewhere(301),
            Elsewhere(302),
            Elsewhere(303),
            Elsewhere(307),
            Elsewhere(308),
            ThroughPlaces(c_Allowed, c_Done, {}),
            ThroughPlaces(c_Allowed + 1, unusable, tooOften),
            {QStringLiteral("in a circle"),
             [](FaultGame& p_Game, ScriptedServer&, QString const& p_Path) {
                 p_Game.Server.Script(p_Path).Always(
                     Answer::Redirect(QUrl(p_Game.Server.Url(p_Path)).toEncoded()));
             },
             unusable, tooOften},
            {QStringLiteral("to a dead server"),
             [](FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path) {
                 SendAway(p_Game, p_Other, p_Path, 302);
                 p_Other.Stop();
             },
             QStringLiteral("server-unreachable"), QStringLiteral("redirected to 127.0.0.1:")},
            {QStringLiteral("to another kind of address"),
             [](FaultGame& p_Game, ScriptedServer&, QString const& p_Path) {
                 p_Game.Server.Script(p_Path).Always(Answer::Redirect("file:///etc/passwd"));
             },
             unusable, QStringLiteral("redirected to an address of another kind")},
            {QStringLiteral("to a server whose line drops"),
             [](FaultGame& p_Game, ScriptedServer& p_Other, QString const& p_Path) {
                 SendAway(p_Game, p_Other, p_Path, 302);
                 p_Other.Script("GET " + p_Path).Then(Answer::Truncated(10), 2);
             }}};
}

FaultReport Redirects()
{
    FaultTally tally;
    for (Redirection const& redirection : Redirections())
        for (bool const isOfAll : {false, true}) {
            FaultGame game;
            ScriptedServer other;
            game.Content.Publish(game.Server);
            game.Content.Publish(other);
            game.Options.RetryForMilliseconds = 1'000; // some rows never find a server
            QString const file = game.Content.ServerPath(FaultGame::c_Middle);
            QStringList paths(file);
            if (isOfAll)
                paths << game.Content.VersionPath() << game.Content.ManifestPath();
            for (QString const& path : paths)
                redirection.Set(game, other, path);
            FaultTrial trial;
            trial.Where = redirection.Where;
            trial.Kind = RequestType::Install;
            trial.End = redirection.End;
            trial.Words = redirection.Words;
            trial.Undo = [&](FaultGame& p_Game) {
                for (QString const& path : paths)
                    p_Game.Server.ClearScript(path);
            };
            trial.Run(game, tally);
        }
    return tally.Report();
}

} // namespace

std::vector<FaultRow> RedirectFaults()
{
    return {{QStringLiteral("redirects"), Redirects}};
}

} // namespace Varnholt::TestSupport
