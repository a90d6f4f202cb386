#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Games = 8;
constexpr int c_LargeBytes = 6'000'000; // of a file that comes in many chunks from both mirrors
QString const c_Large = QStringLiteral("Data/large.MPQ");

/// A game with two mirrors, one of which is spoiled.
struct MirrorGame {
    QString LargePath() const { return Game.Content.ServerPath(c_Large); }
    void Publish() { Game.Content.Publish(Game.Server, {&Bad, &Good}); }
    /// With a large file, which comes over lines that are no faster than real ones.
    void PublishLarge()
    {
        constexpr int c_PieceBytes = 40'000;
        constexpr int c_PauseMilliseconds = 10;

        Game.Content.Files.insert(Game.Content.Files.begin(),
                                  {c_Large, SampleContent::Bytes(c_LargeBytes, 9)});
        Publish();
        for (ScriptedServer* const mirror : {&Bad, &Good})
            mirror->Script("GET " + LargePath())
                .Always(Answer::Drip(c_PieceBytes, c_PauseMilliseconds));
    }

    FaultGame Game;
    ScriptedServer Bad;
    ScriptedServer Good;
    bool IsDead = false; ///< the bad one, from the beginning
};

struct MirrorFault {
    char const* Name;
    std::function<void(MirrorGame&)> Prepare;    ///< publishes, and spoils
    std::function<void(MirrorGame&)> Judge = {}; ///< called when the run has ended
};

/// A connection that is refused leaves no trace: it is counted as struck.
int Injected(MirrorGame const& p_Game)
{
    bool const isLarge = p_Game.Game.Content.Files[0].Path == c_Large;
    bool const isUsed = isLarge ? p_Game.Bad.BodyBytes(p_Game.LargePath()) > 0
                                : p_Game.IsDead || !p_Game.Bad.Requests().empty();
    return isUsed ? 1 : 0;
}

FaultReport Run(MirrorFault const& p_Fault)
{
    FaultTally tally;
    for (int i = 0; i < c_Games; ++i) {
        MirrorGame mirrors;
        FaultGame& game = mirrors.Game;
        p_Fault.Prepare(mirrors);
        if (!game.Begin())
            game.Accuse(QStringLiteral("the module does not load"));
        QString const end = game.InstallWatched();
        game.Expect(end, QStringLiteral("done")); // there is always somebody who helps out
        int const injected = Injected(mirrors);
        if (injected == 0)
            game.Accuse(QStringLiteral("the fault never struck"));
        if (p_Fault.Judge)
            p_Fault.Judge(mirrors);
        game.Content.Publish(game.Server, {&mirrors.Good});
        game.UpdateUntilDone();
        game.Quit();
        tally.Add(QStringLiteral("game %1").arg(i + 1), injected,
                  end == QLatin1String("done") ? QStringLiteral("complete at once")
                                               : end + QStringLiteral(", then complete"),
                  game);
    }
    return tally.Report();
}

void OneIsDead(MirrorGame& p_Game)
{
    p_Game.Publish();
    p_Game.Bad.Stop();
    p_Game.IsDead = true;
}

void AllAreDead(MirrorGame& p_Game)
{
    OneIsDead(p_Game);
    p_Game.Good.Stop();
}

/// It holds the files of another build under the same names.
void OneIsStale(MirrorGame& p_Game)
{
    p_Game.Publish();
    for (SampleFile const& file : p_Game.Game.Content.Files)
        p_Game.Bad.Serve(p_Game.Game.Content.ServerPath(file.Path),
                         QByteArray(file.Bytes.size(), 'o'));
}

/// Every transfer from it ends after some bytes, and nothing answers any more.
void OneDiesInMidRun(MirrorGame& p_Game)
{
    p_Game.Publish();
    for (SampleFile const& file : p_Game.Game.Content.Files) {
        QString const path = "GET " + p_Game.Game.Content.ServerPath(file.Path);
        p_Game.Bad.Script(path).Then(Answer::Reset(file.Bytes.size() / 3));
        p_Game.Bad.Script(path).Always(Answer::ClosedBeforeHeaders());
    }
}

constexpr int c_BeforeDeath = 100'000;

void OneDiesInAChunk(MirrorGame& p_Game)
{
    p_Game.PublishLarge();
    QString const path = "GET " + p_Game.LargePath();
    p_Game.Bad.ClearScript(path);
    p_Game.Bad.Script(path).Then(Answer::Reset(c_BeforeDeath), 2);
    p_Game.Bad.Script("*").Always(Answer::ClosedBeforeHeaders());
    p_Game.Bad.Script(path).Always(Answer::ClosedBeforeHeaders());
}

qint64 BeginOf(RecordedRequest const& p_Request)
{
    return p_Request.Header("Range").mid(6).split('-').first().toLongLong();
}

/// What the dead one has brought of its chunk is not fetched again.
void GoesOnInTheChunk(MirrorGame& p_Game)
{
    auto others = p_Game.Good.Requests(p_Game.LargePath());
    for (RecordedRequest const& request : p_Game.Game.Server.Requests(p_Game.LargePath()))
        others.push_back(request);
    auto const own = p_Game.Bad.Requests(p_Game.LargePath());
    bool const goesOn = std::any_of(own.begin(), own.end(), [&](RecordedRequest const& p_Own) {
        return std::any_of(others.begin(), others.end(), [&](RecordedRequest const& p_Other) {
            qint64 const brought = BeginOf(p_Other) - BeginOf(p_Own);
            return p_Other.Method == "GET" && p_Own.Method == "GET" && brought > 0 &&
                   brought <= c_BeforeDeath;
        });
    });
    if (!goesOn)
        p_Game.Game.Accuse(QStringLiteral("a chunk was fetched anew"));
}

void OneIsSlow(MirrorGame& p_Game)
{
    constexpr int c_Piece = 8'000;
    constexpr int c_PauseMilliseconds = 20;

    p_Game.PublishLarge();
    p_Game.Bad.Script("GET " + p_Game.LargePath())
        .Always(Answer::Drip(c_Piece, c_PauseMilliseconds));
}

void TheFastOneGivesMost(MirrorGame& p_Game)
{
    qint64 const slow = p_Game.Bad.BodyBytes(p_Game.LargePath());
    qint64 const fast = p_Game.Good.BodyBytes(p_Game.LargePath());
    if (slow >= fast)
        p_Game.Game.Accuse(
            QStringLiteral("the slow mirror gave %1 bytes, the fast one %2").arg(slow).arg(fast));
}

void OneHasOtherBytes(MirrorGame& p_Game)
{
    p_Game.PublishLarge();
    p_Game.Bad.Serve(p_Game.LargePath(), QByteArray(c_LargeBytes, 'o'));
}

void OneHasAnotherLength(MirrorGame& p_Game)
{
    p_Game.PublishLarge();
    p_Game.Bad.Serve(p_Game.LargePath(), SampleContent::Bytes(c_LargeBytes / 2, 9));
}

std::vector<MirrorFault> const& Faults()
{
    static std::vector<MirrorFault> const s_Faults{
        {"dead mirror among live ones", OneIsDead},
        {"all mirrors dead", AllAreDead},
        {"stale mirror among live ones", OneIsStale},
        {"mirror dies in mid-run", OneDiesInMidRun},
        {"mirror dies in a chunk", OneDiesInAChunk, GoesOnInTheChunk},
        {"mirrors of different speed", OneIsSlow, TheFastOneGivesMost},
        {"mirror with other bytes of one file", OneHasOtherBytes},
        {"mirror with another length of one file", OneHasAnotherLength},
    };
    return s_Faults;
}

} // namespace

std::vector<FaultRow> MirrorFaults()
{
    std::vector<FaultRow> rows;
    for (MirrorFault const& fault : Faults())
        rows.push_back({QString::fromUtf8(fault.Name), [&fault] { return Run(fault); }});
    return rows;
}

} // namespace Varnholt::TestSupport
