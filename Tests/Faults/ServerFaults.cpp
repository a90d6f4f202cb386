#include "Tests/Faults/ServerFaults.hpp"

#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/MirrorFaults.hpp"
#include "Tests/Faults/ServerTarget.hpp"

#include <functional>

namespace Varnholt::TestSupport {

namespace {

using Answers = std::vector<Answer>;

QByteArray const c_Page = "<html> <body>Some page of a hotel's network</body> </html>\n";

/// How long a server keeps a fault up.
enum Lasting {
    ForAWhile = 1, ///< three times in a row
    ForGood = 2,   ///< until the run has ended
    Both = ForAWhile | ForGood,
};

struct ServerFault {
    char const* Name;
    /// What the server answers to so many requests in a row instead of p_Body.
    std::function<Answers(QByteArray const& p_Body)> Once;
    bool IsOfTransfers = false; ///< makes no sense for a file that is asked for once, as a whole
    int Lasts = Both;
    /// Longer than the module waits before it asks a sick server again.
    int StallMilliseconds = 6'000;
};

/// For servers that say nothing: each time it is waited for.
constexpr int c_ShortStall = 1'500;

Answer Page(int p_Status)
{
    return Answer::Status(p_Status, c_Page);
}

qint64 Half(QByteArray const& p_Body)
{
    return p_Body.size() / 2;
}

Answer Unfinished(QByteArray const& p_Body)
{
    return Answer::WithoutLength().CutAfter(Half(p_Body));
}

/// As long as the file, and other bytes.
Answer OtherBytes(QByteArray const& p_Body)
{
    return Answer().Body(QByteArray(p_Body.size(), 'x'));
}

/// A line that drops, then p_Next for what is asked for to go on.
std::function<Answers(QByteArray const&)> AfterADrop(Answer const& p_Next)
{
    return [p_Next](QByteArray const& p_Body) {
        return Answers{Answer::Truncated(Half(p_Body)), p_Next};
    };
}

std::function<Answers(QByteArray const&)> Plain(Answer const& p_Answer)
{
    return [p_Answer](QByteArray const&) { return Answers{p_Answer}; };
}

std::function<Answers(QByteArray const&)> Cut(Answer (*p_Make)(qint64))
{
    return [p_Make](QByteArray const& p_Body) { return Answers{p_Make(Half(p_Body))}; };
}

std::vector<ServerFault> const& BodyFaults()
{
    static std::vector<ServerFault> const s_Faults{
        {"truncated body", Cut(Answer::Truncated)},
        {"body without length", Plain(Answer::WithoutLength())},
        {"body without length, cut",
         [](QByteArray const& p_Body) { return Answers{Unfinished(p_Body)}; }},
        {"connection reset in the body", Cut(Answer::Reset)},
        {"closed before headers", Plain(Answer::ClosedBeforeHeaders())},
        {"stall before headers", Plain(Answer::SilentBeforeHeaders()), false, Both, c_ShortStall},
        {"stall in the body", Cut(Answer::SilentAfter), false, Both, c_ShortStall},
        // For good it brings the file, in the end.
        {"drip of 1 byte per second, then closed",
         [](QByteArray const&) { return Answers{Answer::Drip(1, 1'000).CutAfter(4)}; }, false,
         ForAWhile},
        {"closed after every tenth of the body",
         [](QByteArray const& p_Body) { return Answers{Answer::Truncated(p_Body.size() / 10)}; },
         true},
        {"gzip-encoded answer", Plain(Answer::Gzip())},
        {"Content-Length too long",
         [](QByteArray const& p_Body) {
             return Answers{Answer::ClaimingLength(p_Body.size() + 7)};
         }},
        {"Content-Length too short",
         [](QByteArray const& p_Body) { return Answers{Answer::ClaimingLength(Half(p_Body))}; }},
        {"wrong MD5", [](QByteArray const& p_Body) { return Answers{OtherBytes(p_Body)}; }, true},
        {"file changed between attempts",
         [](QByteArray const& p_Body) {
             return Answers{OtherBytes(p_Body).CutAfter(Half(p_Body)), Answer::Normal()};
         },
         true},
        {"empty body", Plain(Answer().Body(""))},
    };
    return s_Faults;
}

std::vector<ServerFault> const& StatusFaults()
{
    static std::vector<ServerFault> const s_Faults{
        {"200 with a page", Plain(Answer().Body(c_Page))},
        {"404 with a page", Plain(Page(404))},
        {"500", Plain(Page(500))},
        {"503", Plain(Page(503))},
        // For good it is asked for minutes before it is given up.
        {"429 for a while", Plain(Page(429).With("Retry-After", "1")), false, ForAWhile},
        {"redirect", Plain(Answer::Redirect("/elsewhere"))},
        {"416", AfterADrop(Page(416)), true},
        {"range ignored (200)", AfterADrop(Answer::IgnoringRange()), true},
        {"206 from a later byte", AfterADrop(Answer::WrongRangeStart(3)), true},
        {"206 from an earlier byte", AfterADrop(Answer::WrongRangeStart(-3)), true},
        {"404 after a drop", AfterADrop(Page(404)), true},
    };
    return s_Faults;
}

void Inject(FaultGame& p_Game, ServerTarget const& p_Target, ServerFault const& p_Fault,
            Lasting p_Lasting)
{
    constexpr int c_While = 3;
    constexpr int c_Good = 300;

    QString const path = p_Target.Path(p_Game);
    auto script = p_Game.Server.Script(path);
    if (p_Target.IsTransfer)
        script.Then(Answer::Normal()); // its size
    Answers const answers = p_Fault.Once(p_Target.Body(p_Game));
    for (int time = 0; time < (p_Lasting == ForGood ? c_Good : c_While); ++time)
        for (Answer const& answer : answers)
            script.Then(answer);
}

/// How often the fault struck at most: one that lasts ends with the run.
int Injected(FaultGame const& p_Game, ServerTarget const& p_Target)
{
    int const scripted = p_Game.Server.ScriptedAnswers(p_Target.Path(p_Game));
    return p_Target.IsTransfer && scripted > 0 ? scripted - 1 : scripted;
}

void Try(ServerFault const& p_Fault, ServerTarget const& p_Target, Lasting p_Lasting,
         FaultTally& p_Tally)
{
    FaultGame game;
    game.Options.StallMilliseconds = p_Fault.StallMilliseconds;
    game.Publish();
    p_Target.Prepare(game);
    Inject(game, p_Target, p_Fault, p_Lasting);
    QString const where = QStringLiteral("%1, %2").arg(
        p_Target.Name,
        p_Lasting == ForGood ? QStringLiteral("for good") : QStringLiteral("for a while"));
    QString outcome = QStringLiteral("the module does not load");
    int injected = 0;
    QStringList faults{outcome};
    if (game.Begin()) {
        QString const end = p_Target.IsUpdate ? game.UpdateWatched() : game.InstallWatched();
        injected = Injected(game, p_Target);
        outcome = end == QLatin1String("done") ? QStringLiteral("complete at once")
                                               : end + QStringLiteral(", then complete");
        game.Server.ClearScript(p_Target.Path(game));
        game.UpdateUntilDone();
        game.Quit();
        faults = game.Faults() + p_Target.Faults(game);
        if (injected == 0)
            faults += QStringLiteral("the fault never struck");
    }
    p_Tally.Add(where, injected, outcome, faults, game.LongestSilence());
}

FaultReport Run(ServerFault const& p_Fault)
{
    FaultTally tally;
    for (ServerTarget const& target : ServerTarget::All())
        for (Lasting const lasting : {ForAWhile, ForGood})
            if ((target.IsTransfer || !p_Fault.IsOfTransfers) && (p_Fault.Lasts & lasting) != 0)
                Try(p_Fault, target, lasting, tally);
    return tally.Report();
}

} // namespace

std::vector<FaultRow> ServerFaults()
{
    std::vector<FaultRow> rows;
    for (auto const* const faults : {&BodyFaults(), &StatusFaults()})
        for (ServerFault const& fault : *faults)
            rows.push_back({QString::fromUtf8(fault.Name), [&fault] { return Run(fault); }});
    for (FaultRow const& row : MirrorFaults())
        rows.push_back(row);
    return rows;
}

} // namespace Varnholt::TestSupport
