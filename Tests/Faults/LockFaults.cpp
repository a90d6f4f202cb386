#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/ProcessGame.hpp"

#include <QThread>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

using Task = ProcessGame::Task;

constexpr int c_Locked = 8;
constexpr int c_Arrived = 5'000;
QString const c_File = QStringLiteral("Data/base.MPQ");

/// A second host while the first one's transfer is under way, then one when that was killed.
void TryWhileOneWorks(Task p_Task, QString const& p_Second, FaultTally& p_Tally)
{
    ProcessGame game(p_Task, ProcessGame::Size::Plain);
    game.Server.Script("GET " + game.Content.ServerPath(c_File))
        .Then(Answer::SilentAfter(c_Arrived));
    QStringList faults;
    HostProcess first(game, game.Command());
    if (!first.WaitUntil([&] { return game.Read(c_File + ".part").size() == c_Arrived; }))
        faults += QStringLiteral("the first one's transfer did not begin");
    QByteArray const part = game.Read(c_File + ".part");
    QStringList command(p_Second);
    if (p_Second == QLatin1String("install"))
        command += game.Folder;
    if (p_Second == QLatin1String("uninstall"))
        command << QStringLiteral("--delete-files") << QStringLiteral("--yes");
    Outcome const second = HostProcess(game, command).Finish();
    if (second.Status != c_Locked || !second.Err.contains(QLatin1String("another program works")))
        faults += QStringLiteral("the second one was not refused: %1, %2")
                      .arg(second.Status)
                      .arg(second.Err.trimmed());
    if (game.Read(c_File + ".part") != part)
        faults += QStringLiteral("the second one changed what the first one fetches");
    first.Signal(SIGKILL);
    first.Finish();
    game.Judge();
    game.Complete();
    p_Tally.Add(ProcessGame::Name(p_Task) + ", then " + p_Second, 1,
                QStringLiteral("refused, complete when the first one was killed"),
                faults + game.Faults());
}

FaultReport SecondHost()
{
    FaultTally tally;
    for (Task const task : {Task::Install, Task::Update})
        for (char const* const second : {"install", "update", "repair", "uninstall"})
            TryWhileOneWorks(task, QString::fromLatin1(second), tally);
    return tally.Report();
}

void TryTogether(Task p_Task, int p_Index, FaultTally& p_Tally)
{
    constexpr unsigned long c_StepMicroseconds = 1'500;

    ProcessGame game(p_Task, ProcessGame::Size::Plain);
    HostProcess first(game, game.Command());
    // They meet at another place each time.
    QThread::usleep(static_cast<unsigned long>(p_Index) * c_StepMicroseconds);
    HostProcess second(game, game.Command());
    Outcome const ends[] = {first.Finish(), second.Finish()};
    game.Judge();

    QStringList faults;
    int worked = 0;
    for (Outcome const& end : ends) {
        worked += end.Status == 0 ? 1 : 0;
        if (end.Status != 0 && end.Status != c_Locked)
            faults += QStringLiteral("one ended with %1: %2").arg(end.Status).arg(end.Err);
    }
    if (worked == 0)
        faults += QStringLiteral("both were refused");
    // Its size, its bytes.
    for (SampleFile const& file : game.Content.Files)
        if (game.Requests(file.Path) > 2)
            faults += QStringLiteral("both fetched %1").arg(file.Path);
    if (!game.Wrong().isEmpty())
        faults += QStringLiteral("the game is not complete");
    game.Complete();
    // Those that worked one after the other have not met.
    p_Tally.Add(QStringLiteral("%1 %2").arg(ProcessGame::Name(p_Task)).arg(p_Index),
                worked == 1 ? 1 : 0,
                worked == 1 ? QStringLiteral("one works, one is refused")
                            : QStringLiteral("one after the other"),
                faults + game.Faults());
}

FaultReport Together()
{
    constexpr int c_Times = 20;

    FaultTally tally;
    for (Task const task : {Task::Install, Task::Update})
        for (int i = 0; i < c_Times; ++i)
            TryTogether(task, i, tally);
    return tally.Report();
}

} // namespace

std::vector<FaultRow> LockFaults()
{
    return {{QStringLiteral("second host while one works"), SecondHost},
            {QStringLiteral("two hosts at the same instant"), Together}};
}

} // namespace Varnholt::TestSupport
