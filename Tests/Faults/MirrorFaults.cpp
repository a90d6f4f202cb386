#include "Tests/Faults/MirrorFaults.hpp"

#include "Tests/Faults/FaultGame.hpp"

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Games = 8;

/// Publishes on mirrors and spoils some of them.
using Spoil = std::function<void(FaultGame& p_Game, ScriptedServer& p_Bad, ScriptedServer& p_Good)>;

FaultReport Run(Spoil const& p_Spoil)
{
    FaultTally tally;
    for (int i = 0; i < c_Games; ++i) {
        FaultGame game;
        ScriptedServer bad;
        ScriptedServer good;
        p_Spoil(game, bad, good);
        QString end = QStringLiteral("the module does not load");
        if (game.Begin())
            end = game.InstallWatched();
        bool const isDone = end == QLatin1String("done");
        game.Content.Publish(game.Server, {&good});
        game.UpdateUntilDone();
        game.Quit();
        tally.Add(QStringLiteral("game %1").arg(i + 1), 1,
                  isDone ? QStringLiteral("complete at once")
                         : end + QStringLiteral(", then complete"),
                  game);
    }
    return tally.Report();
}

void OneIsDead(FaultGame& p_Game, ScriptedServer& p_Bad, ScriptedServer& p_Good)
{
    p_Game.Content.Publish(p_Game.Server, {&p_Bad, &p_Good});
    p_Bad.Stop();
}

void AllAreDead(FaultGame& p_Game, ScriptedServer& p_Bad, ScriptedServer& p_Good)
{
    ScriptedServer another;
    p_Game.Content.Publish(p_Game.Server, {&p_Bad, &another});
    p_Bad.Stop();
    Q_UNUSED(p_Good);
}

/// It holds the files of another build under the same names.
void OneIsStale(FaultGame& p_Game, ScriptedServer& p_Bad, ScriptedServer& p_Good)
{
    p_Game.Content.Publish(p_Game.Server, {&p_Bad, &p_Good});
    for (SampleFile const& file : p_Game.Content.Files)
        p_Bad.Serve(p_Game.Content.ServerPath(file.Path), QByteArray(file.Bytes.size(), 'o'));
}

/// Every transfer from it ends after some bytes, and nothing answers any more.
void OneDiesInMidRun(FaultGame& p_Game, ScriptedServer& p_Bad, ScriptedServer& p_Good)
{
    p_Game.Content.Publish(p_Game.Server, {&p_Bad, &p_Good});
    for (SampleFile const& file : p_Game.Content.Files) {
        QString const path = p_Game.Content.ServerPath(file.Path);
        p_Bad.Script("GET " + path).Then(Answer::Reset(file.Bytes.size() / 3));
        p_Bad.Script("GET " + path).Always(Answer::ClosedBeforeHeaders());
    }
}

} // namespace

std::vector<FaultRow> MirrorFaults()
{
    return {{QStringLiteral("dead mirror among live ones"), [] { return Run(OneIsDead); }},
            {QStringLiteral("all mirrors dead"), [] { return Run(AllAreDead); }},
            {QStringLiteral("stale mirror among live ones"), [] { return Run(OneIsStale); }},
            {QStringLiteral("mirror dies in mid-run"), [] { return Run(OneDiesInMidRun); }}};
}

} // namespace Varnholt::TestSupport
