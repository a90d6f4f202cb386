#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/ProcessGame.hpp"

#include <QElapsedTimer>
#include <QMutexLocker>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <random>

namespace Varnholt::TestSupport {

namespace {

using Task = ProcessGame::Task;

constexpr int c_Games = 150;
constexpr int c_Threads = 3; // a host waits more than it works
constexpr unsigned c_Seed = 20'260'101;

QString const c_Late = QStringLiteral("after the end");

/// How long a run takes that nobody disturbs, microseconds.
qint64 UndisturbedTime(Task p_Task)
{
    constexpr int c_Runs = 3;

    qint64 longest = 0;
    for (int run = 0; run < c_Runs; ++run) {
        ProcessGame game(p_Task, ProcessGame::Size::Plain);
        game.SlowDown();
        QElapsedTimer clock;
        clock.start();
        HostProcess(game, game.Command()).Finish();
        longest = std::max(longest, clock.nsecsElapsed() / 1'000);
    }
    return longest;
}

/// When the hosts of one game are killed, one after the other, microseconds after their starts.
std::vector<qint64> DrawMoments(std::mt19937& p_Dice, qint64 p_Undisturbed)
{
    constexpr std::size_t c_MostInARow = 4;
    constexpr double c_Again = 0.3;

    std::uniform_real_distribution<double> part(0, 1);
    std::vector<qint64> moments;
    do
        moments.push_back(static_cast<qint64>(part(p_Dice) * static_cast<double>(p_Undisturbed)));
    while (moments.size() < c_MostInARow && part(p_Dice) < c_Again);
    return moments;
}

bool HasPart(HostGame const& p_Game)
{
    QStringList const names = p_Game.FilesOnDisk();
    return std::any_of(names.begin(), names.end(), [](QString const& p_Name) {
        return p_Name.endsWith(QLatin1String(".part"));
    });
}

/// \return where the host was when it died
QString KillAt(ProcessGame& p_Game, qint64 p_Microseconds)
{
    int const before = p_Game.Requested().size();
    HostProcess host(p_Game, p_Game.Command());
    QThread::usleep(static_cast<unsigned long>(p_Microseconds));
    host.Signal(SIGKILL);
    bool const isDead = host.Finish().Status == -1;
    p_Game.Judge();
    if (!isDead)
        return c_Late;
    if (HasPart(p_Game))
        return QStringLiteral("in a transfer");
    return p_Game.Requested().size() == before ? QStringLiteral("before the first file")
                                               : QStringLiteral("between files");
}

FaultReport KillAtRandom(Task p_Task)
{
    qint64 const undisturbed = UndisturbedTime(p_Task);
    std::mt19937 dice(c_Seed);
    std::vector<std::vector<qint64>> plan;
    for (int i = 0; i < c_Games; ++i)
        plan.push_back(DrawMoments(dice, undisturbed));

    FaultTally tally;
    QMutex tallyMutex;
    InParallel(c_Games, c_Threads, [&](int p_Index) {
        ProcessGame game(p_Task, ProcessGame::Size::Plain);
        game.SlowDown();
        QStringList places;
        for (qint64 const moment : plan[static_cast<std::size_t>(p_Index)])
            places += KillAt(game, moment);
        game.Complete();
        QMutexLocker const lock(&tallyMutex);
        QString const where = QStringLiteral("game %1 (killed %2)")
                                  .arg(p_Index + 1)
                                  .arg(places.join(QLatin1String(", then ")));
        for (QString const& place : places)
            tally.Add(where, place == c_Late ? 0 : 1, place, QStringList());
        tally.Add(where, 0, QStringLiteral("games complete with the next run"), game.Faults());
    });
    return tally.Report();
}

} // namespace

std::vector<FaultRow> KillFaults()
{
    return {
        {QStringLiteral("kill -9 in an install"), [] { return KillAtRandom(Task::Install); }},
        {QStringLiteral("kill -9 in an update"), [] { return KillAtRandom(Task::Update); }},
    };
}

} // namespace Varnholt::TestSupport
