#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Host/SignedGame.hpp"

#include <functional>

namespace Varnholt::TestSupport {

namespace {

using Role = Signer::Role;

QByteArray const c_Evil = QByteArrayLiteral("evil");
QString const c_Hosts = QStringLiteral("/cdns.info");
QString const c_Signature = QStringLiteral(".minisig");

/// A game and its attacker, who has a server, a key and a build of his own. In that build, and in
/// everything else that a host must not take, stands a word that stands nowhere else.
struct Scene {
    Scene()
        : Thief(Game.Publisher.Comment)
        , Bad(Game.Content)
    {
        Bad.RealmList = "SET realmlist \"" + c_Evil + ".example\"";
        for (SampleFile& file : Bad.Files)
            if (file.Path == SignedGame::c_Program)
                file.Bytes = SignedGame::ProgramText(c_Evil);
    }

    QStringList Documents() const
    {
        return {Game.Content.VersionPath(), Game.Content.ManifestPath(), c_Hosts,
                Game.Content.RealmListPath()};
    }

    /// Puts the thief's build on the game's server under the signatures that lie there.
    void SwapAll()
    {
        Bad.Publish(Game.Server);
        Game.Server.Serve(c_Hosts, Other.Host().toLatin1());
        Bad.Publish(Other);
    }

    SignedGame Game;
    ScriptedServer Other;
    Signer Thief;
    SampleContent Bad;
};

struct Attack {
    QString Where;
    std::function<void(Scene&)> Strike;     ///< when the game, if it is to be installed, is
    QString End;                            ///< how each run under it ends
    bool OnInstall = true;                  ///< also on one who has seen nothing before
    RequestType Kind = RequestType::Update; ///< the run that every attack is tried on
};

/// Sentences about what has reached the folder.
QStringList Harm(Scene const& p_Scene)
{
    QStringList harm;
    auto const files = p_Scene.Game.Files();
    for (auto row = files.constBegin(); row != files.constEnd(); ++row)
        if (row.value().contains(c_Evil))
            harm += row.key() + QStringLiteral(" has what the attacker gave");
    return harm;
}

/// \return sentences about a run that ended otherwise
QStringList Expect(SignedGame& p_Game, RequestType p_Kind, QString const& p_End)
{
    QString const end = p_Kind == RequestType::Install ? p_Game.InstallOver() : p_Game.Run(p_Kind);
    if (end == p_End)
        return {};
    return {QStringLiteral("a run ended with %1 instead of %2 (%3)")
                .arg(end, p_End, p_Game.Sentence())};
}

void Try(Attack const& p_Attack, RequestType p_Kind, FaultTally& p_Tally)
{
    Scene scene;
    SignedGame& game = scene.Game;
    QStringList faults;
    if (!game.Open())
        faults += QStringLiteral("the module does not load");
    if (p_Kind != RequestType::Install)
        faults += Expect(game, RequestType::Install, QStringLiteral("done"));
    QByteArray const config = game.Read(SignedGame::c_Config);
    auto const comment = game.Publisher.Comment;
    p_Attack.Strike(scene);
    auto const before = game.Server.Requests().size();
    faults += Expect(game, p_Kind, p_Attack.End) + Harm(scene);
    bool const hasHeld = p_Attack.End != QLatin1String("done");
    if (hasHeld && p_Kind != RequestType::Install && game.Read(SignedGame::c_Config) != config)
        faults += QStringLiteral("the configuration has changed");
    if (hasHeld)
        for (RecordedRequest const& request : scene.Other.Requests())
            if (!scene.Documents().contains(QString(request.Path).remove(c_Signature)))
                faults += request.Path + QStringLiteral(" was asked of the attacker");
    auto const injected = static_cast<int>(game.Server.Requests().size() - before);

    // Without him all is as it should be, once that has been looked at.
    for (QString const& path : scene.Documents())
        for (QString const& part : {path, path + c_Signature})
            game.Server.ClearScript(part);
    game.Publisher.Comment = comment;
    game.Publisher.Comment.Sequence += 10;
    game.PublishSigned();
    if (hasHeld)
        faults +=
            Expect(game, RequestType::Play,
                   p_Kind == RequestType::Install && !game.Setting("pelmora_app.Installed").toBool()
                       ? QStringLiteral("not-installed")
                       : QStringLiteral("game-unverified"));
    faults += Expect(game, RequestType::Install, QStringLiteral("done"));
    faults += Expect(game, RequestType::Play, QStringLiteral("done"));
    if (!game.WaitUntil([&] { return game.Starts().contains("good"); }))
        faults += QStringLiteral("the game does not start");
    faults += Harm(scene);
    game.Close();
    p_Tally.Add(p_Attack.Where, injected, p_Attack.End, faults);
}

/// The first attack is tried on an install and a start too, its variants are not.
FaultReport Run(std::vector<Attack> const& p_Attacks)
{
    FaultTally tally;
    for (Attack const& attack : p_Attacks)
        Try(attack, attack.Kind, tally);
    if (p_Attacks.front().OnInstall)
        Try(p_Attacks.front(), RequestType::Install, tally);
    Try(p_Attacks.front(), RequestType::Play, tally);
    return tally.Report();
}

FaultReport ChangedManifest()
{
    return Run({{"its bytes",
                 [](Scene& p_Scene) {
                     p_Scene.Bad.Add({"evil.txt", c_Evil});
                     p_Scene.Game.Server.Serve(p_Scene.Bad.ServerPath("evil.txt"), c_Evil);
                     p_Scene.Game.Server.Serve(p_Scene.Bad.ManifestPath(),
                                               p_Scene.Bad.ManifestBytes());
                 },
                 "signature-wrong"}});
}

FaultReport ChangedContent()
{
    return Run(
        {{"under the old signatures", [](Scene& p_Scene) { p_Scene.SwapAll(); }, "signature-wrong"},
         {"under his own signatures",
          [](Scene& p_Scene) { p_Scene.Thief.Publish(p_Scene.Bad, p_Scene.Game.Server); },
          "key-wrong"}});
}

/// What the publisher has signed himself, before he knew better.
FaultReport OldManifest()
{
    auto const publishOld = [](Scene& p_Scene) {
        --p_Scene.Game.Publisher.Comment.Sequence;
        p_Scene.Bad.Build = "build_0";
        p_Scene.Game.Publisher.Publish(p_Scene.Bad, p_Scene.Game.Server);
    };
    return Run(
        {{"with all that was with it", publishOld, "rolled-back", false},
         {"under the new version file",
          [](Scene& p_Scene) {
              p_Scene.Game.Publisher.Serve(p_Scene.Game.Server, p_Scene.Game.Content.ManifestPath(),
                                           p_Scene.Bad.ManifestBytes(), Role::Manifest, "build_0");
          },
          "manifest-differs"},
         {"frozen",
          [publishOld](Scene& p_Scene) {
              p_Scene.Game.Publisher.Comment.Sequence += 2;
              p_Scene.Game.Publisher.Comment.Expires = QDateTime::currentDateTimeUtc().addSecs(-1);
              publishOld(p_Scene);
          },
          "signature-expired"}});
}

FaultReport DevChannel()
{
    return Run({{"version file",
                 [](Scene& p_Scene) {
                     p_Scene.Game.Publisher.Comment.Channel = "dev";
                     p_Scene.Game.Publisher.Publish(p_Scene.Bad, p_Scene.Game.Server);
                 },
                 "game-wrong"}});
}

FaultReport AnotherGame()
{
    return Run({{"all",
                 [](Scene& p_Scene) {
                     p_Scene.Game.Publisher.Comment.Game = "other_app";
                     p_Scene.Game.Publisher.Publish(p_Scene.Bad, p_Scene.Game.Server);
                 },
                 "game-wrong"},
                {"of another platform",
                 [](Scene& p_Scene) {
                     p_Scene.Game.Publisher.Comment.Platform = "other";
                     p_Scene.Game.Publisher.Publish(p_Scene.Bad, p_Scene.Game.Server);
                 },
                 "game-wrong"}});
}

/// Makes something of each signature beside the attacker's build.
FaultReport WithSignatures(std::function<void(ScriptedServer&, QString const&)> const& p_Spoil)
{
    return Run({{"all",
                 [p_Spoil](Scene& p_Scene) {
                     p_Scene.SwapAll();
                     for (QString const& path : p_Scene.Documents())
                         p_Spoil(p_Scene.Game.Server, path + c_Signature);
                 },
                 "signature-missing"}});
}

FaultReport TruncatedSignature()
{
    return WithSignatures([](ScriptedServer& p_Server, QString const& p_Path) {
        p_Server.Serve(p_Path, "untrusted comment: signature of key 00\nRUQ");
    });
}

FaultReport HugeSignature()
{
    return WithSignatures([](ScriptedServer& p_Server, QString const& p_Path) {
        p_Server.Script(p_Path).Always(Answer::EndlessBody());
    });
}

FaultReport NoSignature()
{
    return WithSignatures(
        [](ScriptedServer& p_Server, QString const& p_Path) { p_Server.Remove(p_Path); });
}

FaultReport SwappedHostList()
{
    auto const swap = [](Scene& p_Scene) {
        p_Scene.Bad.Publish(p_Scene.Other);
        p_Scene.Game.Server.Serve(c_Hosts, p_Scene.Other.Host().toLatin1());
    };
    return Run({{"its bytes", swap, "signature-wrong"},
                {"with a signature of his own",
                 [](Scene& p_Scene) {
                     p_Scene.Bad.Publish(p_Scene.Other);
                     p_Scene.Thief.Serve(p_Scene.Game.Server, c_Hosts,
                                         p_Scene.Other.Host().toLatin1(), Role::Hosts);
                 },
                 "key-wrong"}});
}

FaultReport SwappedRealmList()
{
    return Run({{"its bytes",
                 [](Scene& p_Scene) {
                     p_Scene.Game.Server.Serve(p_Scene.Game.Content.RealmListPath(),
                                               p_Scene.Bad.RealmList);
                 },
                 "signature-wrong"},
                {"an old one",
                 [](Scene& p_Scene) {
                     --p_Scene.Game.Publisher.Comment.Sequence;
                     p_Scene.Game.Publisher.Serve(p_Scene.Game.Server,
                                                  p_Scene.Game.Content.RealmListPath(),
                                                  p_Scene.Bad.RealmList, Role::RealmList);
                 },
                 "rolled-back"},
                {"another document",
                 [](Scene& p_Scene) {
                     p_Scene.Game.Publisher.Serve(p_Scene.Game.Server,
                                                  p_Scene.Game.Content.RealmListPath(),
                                                  p_Scene.Bad.RealmList, Role::Hosts);
                 },
                 "game-wrong"}});
}

/// A repair has the module ask for the realm list twice.
FaultReport ChangingAnswers()
{
    return Run(
        {{"after the first",
          [](Scene& p_Scene) {
              ScriptedServer& server = p_Scene.Game.Server;
              SampleContent const& good = p_Scene.Game.Content;
              QByteArray const version = "{\"build\":\"evil\"}";
              server.Script(good.VersionPath()).Then(Answer()).Always(Answer().Body(version));
              server.Script(good.ManifestPath())
                  .Then(Answer())
                  .Always(Answer().Body(p_Scene.Bad.ManifestBytes()));
              server.Script(good.RealmListPath())
                  .Then(Answer())
                  .Always(Answer().Body(p_Scene.Bad.RealmList));
              server.Script(c_Hosts).Then(Answer()).Always(
                  Answer().Body(p_Scene.Other.Host().toLatin1()));
          },
          "done", true, RequestType::Repair}});
}

FaultReport Redirects()
{
    auto const sendAway = [](Scene& p_Scene) {
        for (QString const& path : p_Scene.Documents())
            for (QString const& part : {path, path + c_Signature})
                p_Scene.Game.Server.Script(part).Always(
                    Answer::Redirect(p_Scene.Other.Url(part).toLatin1()));
    };
    return Run({{"to his documents",
                 [sendAway](Scene& p_Scene) {
                     p_Scene.Thief.Publish(p_Scene.Bad, p_Scene.Other);
                     sendAway(p_Scene);
                 },
                 "key-wrong"},
                {"to the publisher's own",
                 [sendAway](Scene& p_Scene) {
                     p_Scene.Game.Publisher.Publish(p_Scene.Game.Content, p_Scene.Other,
                                                    p_Scene.Game.Server.Host().toLatin1());
                     sendAway(p_Scene);
                 },
                 "done"}});
}

} // namespace

std::vector<FaultRow> SignatureFaults()
{
    return {{"changed manifest", ChangedManifest},
            {"changed content and manifest", ChangedContent},
            {"old manifest with its good signature", OldManifest},
            {"signature of the development channel", DevChannel},
            {"signature of another game", AnotherGame},
            {"truncated signature", TruncatedSignature},
            {"huge signature", HugeSignature},
            {"no signature", NoSignature},
            {"swapped host list", SwappedHostList},
            {"swapped realm list", SwappedRealmList},
            {"answers that change", ChangingAnswers},
            {"signed documents redirected", Redirects}};
}

} // namespace Varnholt::TestSupport
