#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/ServerTarget.hpp"

#include <functional>

namespace Varnholt::TestSupport {

namespace {

using Answers = std::vector<Answer>;

QByteArray const c_Page = "<html> <body>Some page of a hotel's network</body> </html>\n";

/// How long a server keeps a fault up.
enum Lasting {
    ForAWhile = 1, ///< some times in a row
    ForGood = 2,   ///< until the run has ended
    Both = ForAWhile | ForGood,
};

/// What a fault can strike.
enum Struck {
    Documents = 1,
    Headers = 2, ///< alone, as the answer to a question for a size
    Contents = 4,
    Bodies = Documents | Contents,
    Anything = Bodies | Headers,
};

struct ServerFault {
    char const* Name;
    /// What the server answers to so many requests in a row instead of p_Body.
    std::function<Answers(QByteArray const& p_Body)> Once;
    Struck Strikes = Bodies;
    int Lasts = Both;
    int StallMilliseconds = 6'000;
    int Times = 3; ///< that it strikes for a while
};

/// For servers that say nothing: each time it is waited for.
constexpr int c_ShortStall = 1'000;

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
        // Early: what is left of the file is more than comes between two drops.
        return Answers{Answer::Truncated(p_Body.size() / 3), p_Next};
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
        {"body without length", Plain(Answer::WithoutLength()), Anything},
        {"body without length, cut",
         [](QByteArray const& p_Body) { return Answers{Unfinished(p_Body)}; }},
        {"connection reset in the body", Cut(Answer::Reset)},
        {"closed before headers", Plain(Answer::ClosedBeforeHeaders()), Anything},
        {"stall before headers", Plain(Answer::SilentBeforeHeaders()), Anything, Both, c_ShortStall,
         2},
        // Seen when nothing has come for some seconds more.
        {"stall in the body", Cut(Answer::SilentAfter), Bodies, Both, c_ShortStall, 1},
        // For good it brings the file, in the end.
        {"drip of 1 byte per second, then closed",
         [](QByteArray const&) { return Answers{Answer::Drip(1, 1'000).CutAfter(4)}; }, Bodies,
         ForAWhile},
        {"closed after every tenth of the body",
         [](QByteArray const& p_Body) { return Answers{Answer::Truncated(p_Body.size() / 10)}; },
         Contents},
        {"gzip-encoded answer", Plain(Answer::Gzip()), Anything},
        {"Content-Length too long",
         [](QByteArray const& p_Body) {
             return Answers{Answer::ClaimingLength(p_Body.size() + 7)};
         },
         Anything},
        {"Content-Length too short",
         [](QByteArray const& p_Body) { return Answers{Answer::ClaimingLength(Half(p_Body))}; },
         Anything},
        {"wrong MD5", [](QByteArray const& p_Body) { return Answers{OtherBytes(p_Body)}; },
         Contents},
        {"file changed between attempts",
         [](QByteArray const& p_Body) {
             return Answers{OtherBytes(p_Body).CutAfter(Half(p_Body)), Answer::Normal()};
         },
         Contents},
        {"empty body", Plain(Answer().Body("")), Anything},
    };
    return s_Faults;
}

std::vector<ServerFault> const& StatusFaults()
{
    static std::vector<ServerFault> const s_Faults{
        {"200 with a page", Plain(Answer().Body(c_Page)), Anything},
        {"404 with a page", Plain(Page(404)), Anything},
        {"500", Plain(Page(500)), Anything},
        {"503", Plain(Page(503)), Anything},
        {"429", Plain(Page(429).With("Retry-After", "1")), Anything},
        {"redirect to nothing", Plain(Answer::Redirect("/elsewhere")), Anything},
        {"416", AfterADrop(Page(416)), Contents},
        {"range ignored (200)", AfterADrop(Answer::IgnoringRange()), Contents},
        {"206 from a later byte", AfterADrop(Answer::WrongRangeStart(3)), Contents},
        {"206 from an earlier byte", AfterADrop(Answer::WrongRangeStart(-3)), Contents},
        {"404 after a drop", AfterADrop(Page(404)), Contents},
    };
    return s_Faults;
}

void Inject(FaultGame& p_Game, ServerTarget const& p_Target, ServerFault const& p_Fault,
            Lasting p_Lasting)
{
    constexpr int c_Good = 1'000;

    auto script = p_Game.Server.Script(p_Target.Script(p_Game));
    Answers const answers = p_Fault.Once(p_Target.Body(p_Game));
    for (int time = 0; time < (p_Lasting == ForGood ? c_Good : p_Fault.Times); ++time)
        for (Answer const& answer : answers)
            script.Then(answer);
}

bool Strikes(ServerFault const& p_Fault, ServerTarget const& p_Target)
{
    Struck const kind = p_Target.Kind == ServerTarget::Type::Document ? Documents
                        : p_Target.Kind == ServerTarget::Type::Size   ? Headers
                                                                      : Contents;
    return (p_Fault.Strikes & kind) != 0;
}

void Try(ServerFault const& p_Fault, ServerTarget const& p_Target, Lasting p_Lasting,
         FaultTally& p_Tally)
{
    constexpr int c_Short = 2'500; // for good is as long as the host tries

    FaultGame game;
    game.Options.StallMilliseconds = p_Fault.StallMilliseconds;
    if (p_Lasting == ForGood)
        game.Options.RetryForMilliseconds = c_Short;
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
        // At most: one that lasts ends with the run.
        injected = game.Server.ScriptedAnswers(p_Target.Script(game));
        outcome = end == QLatin1String("done") ? QStringLiteral("complete at once")
                                               : end + QStringLiteral(", then complete");
        game.Server.ClearScript(p_Target.Script(game));
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
            if (Strikes(p_Fault, target) && (p_Fault.Lasts & lasting) != 0)
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
