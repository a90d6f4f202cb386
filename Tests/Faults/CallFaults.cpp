#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/ProcessGame.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QMutexLocker>

#include <cerrno>

namespace Varnholt::TestSupport {

namespace {

using Task = ProcessGame::Task;

constexpr int c_Threads = 4; // a host waits more than it works

struct Way {
    QString How;  ///< for the call breaker
    QString Name; ///< for the table
    bool Kills = false;
    QString OnlyCall = {}; ///< the kind of call; empty: each
};

/// A death before a call is one behind the call before it: nothing else happens in between.
std::vector<Way> const& Deaths()
{
    static std::vector<Way> const s_Ways{
        {QStringLiteral("kill"), QStringLiteral("killed before"), true},
        {QStringLiteral("tear"), QStringLiteral("killed in the middle of"), true,
         QStringLiteral("write")}};
    return s_Ways;
}

std::vector<Way> const& Errors()
{
    static std::vector<Way> const s_Ways{{QString::number(ENOSPC), QStringLiteral("ENOSPC")},
                                         {QString::number(EIO), QStringLiteral("EIO")},
                                         {QString::number(EACCES), QStringLiteral("EACCES")}};
    return s_Ways;
}

struct Case {
    int Number = 0; ///< of the call
    Way Manner;
};

QMap<QString, QString> Variables(ProcessGame const& p_Game, Case const& p_Case)
{
#ifdef VARNHOLT_CALL_BREAKER
    return {
        {QStringLiteral("LD_PRELOAD"), QStringLiteral(VARNHOLT_CALL_BREAKER)},
        // A sanitizer wants to be the first that is loaded.
        {QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0:detect_leaks=0")},
        {QStringLiteral("VARNHOLT_BREAK_BELOW"), p_Game.Base},
        {QStringLiteral("VARNHOLT_BREAK_AT"), QString::number(p_Case.Number)},
        {QStringLiteral("VARNHOLT_BREAK_HOW"), p_Case.Manner.How},
        {QStringLiteral("VARNHOLT_BREAK_LOG"), p_Game.Base + QStringLiteral("calls")}};
#else
    Q_UNUSED(p_Game);
    Q_UNUSED(p_Case);
    return {};
#endif
}

/// "12 rename /where/to" of each call that the log has; the path without the folder of the test.
QStringList Calls(ProcessGame const& p_Game)
{
    QString log = QString::fromUtf8(ReadFile(p_Game.Base + QStringLiteral("calls")));
    return log.remove(p_Game.Base).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

std::vector<Case> Cases(Task p_Task, std::vector<Way> const& p_Ways)
{
    ProcessGame game(p_Task, ProcessGame::Size::Smallest);
    HostProcess(game, game.Command(), Variables(game, {})).Finish();
    std::vector<Case> cases;
    for (Way const& way : p_Ways)
        for (QString const& call : Calls(game))
            if (way.OnlyCall.isEmpty() || call.section(' ', 1, 1) == way.OnlyCall)
                cases.push_back({call.section(' ', 0, 0).toInt(), way});
    return cases;
}

/// What a run that was struck came to, for the table.
QString Judge(ProcessGame& p_Game, Case const& p_Case, Outcome const& p_End, QString const& p_Call,
              QStringList& p_Faults)
{
    if (p_Call.isEmpty())
        return QStringLiteral("not reached");
    if (p_Case.Manner.Kills) {
        if (p_End.Status != -1)
            p_Faults += QStringLiteral("the host survived its death");
        QString const call = p_Call.section(' ', 1, 1);
        // The numbers of threads that write at the same time change places between runs.
        bool const isOther = !p_Case.Manner.OnlyCall.isEmpty() && p_Case.Manner.OnlyCall != call;
        return (isOther ? Deaths().front() : p_Case.Manner).Name + QLatin1Char(' ') + call;
    }
    if (p_End.Status == -1)
        p_Faults += QStringLiteral("the host crashed");
    if (p_End.Status == 0 && !p_Game.Wrong().isEmpty())
        p_Faults += QStringLiteral("it was called done and is not complete");
    if (p_End.Status > 0 && !p_End.Err.contains(QLatin1String("varnholt-host: ")))
        p_Faults += QStringLiteral("it failed without a word: ") + p_End.Err;
    return p_End.Status == 0 ? p_Case.Manner.Name + QStringLiteral(", complete at once")
                             : QStringLiteral("%1, exit %2, then complete")
                                   .arg(p_Case.Manner.Name)
                                   .arg(p_End.Status);
}

FaultReport Strike(Task p_Task, std::vector<Way> const& p_Ways)
{
    std::vector<Case> const cases = Cases(p_Task, p_Ways);
    FaultTally tally;
    if (cases.empty())
        tally.Add({}, 0, QStringLiteral("not possible here: no call was seen"), QStringList());
    QMutex tallyMutex;
    InParallel(static_cast<int>(cases.size()), c_Threads, [&](int p_Index) {
        Case const& one = cases[static_cast<std::size_t>(p_Index)];
        ProcessGame game(p_Task, ProcessGame::Size::Smallest);
        Outcome const end = HostProcess(game, game.Command(), Variables(game, one)).Finish();
        game.Judge();
        QString const call = Calls(game).join(QLatin1String("; "));
        QStringList faults;
        QString const outcome = Judge(game, one, end, call, faults);
        game.Complete();
        QMutexLocker const lock(&tallyMutex);
        tally.Add(one.Manner.Name + QLatin1Char(' ') + call, call.isEmpty() ? 0 : 1, outcome,
                  faults + game.Faults());
    });
    return tally.Report();
}

} // namespace

std::vector<FaultRow> CallFaults()
{
    std::vector<FaultRow> rows;
    for (Task const task : {Task::Install, Task::Update}) {
        QString const name = ProcessGame::Name(task);
        rows.push_back({QStringLiteral("kill -9 at each file call of an ") + name,
                        [task] { return Strike(task, Deaths()); }});
        rows.push_back({QStringLiteral("each file call of an %1 fails").arg(name),
                        [task] { return Strike(task, Errors()); }});
    }
    return rows;
}

} // namespace Varnholt::TestSupport
