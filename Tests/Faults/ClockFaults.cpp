#include "Tests/Faults/FaultGame.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/ProcessGame.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QDir>
#include <QElapsedTimer>

#include <ctime>

namespace Varnholt::TestSupport {

namespace {

using Task = ProcessGame::Task;

constexpr int c_Arrived = 5'000;
QString const c_File = QStringLiteral("Data/base.MPQ");

/// A clock of a host's own, which is behind or ahead of the machine's.
class OwnClock {
public:
    explicit OwnClock(HostGame const& p_Game)
        : File(p_Game.Base + QStringLiteral("clock"))
    {
        Set(QStringLiteral("+0d"));
    }

    /// \param p_Offset as "+1d", of the machine's clock
    void Set(QString const& p_Offset) const
    {
        // As a whole: it is read again and again.
        QString const fresh = File + QStringLiteral(".new");
        if (!WriteFile(fresh, p_Offset.toLatin1() + '\n') ||
            std::rename(fresh.toUtf8().constData(), File.toUtf8().constData()) != 0)
            qFatal("the clock cannot be set");
    }

    QMap<QString, QString> Variables() const
    {
        return {{QStringLiteral("LD_PRELOAD"), Library()},
                {QStringLiteral("FAKETIME_TIMESTAMP_FILE"), File},
                {QStringLiteral("FAKETIME_NO_CACHE"), QStringLiteral("1")},
                {QStringLiteral("DONT_FAKE_MONOTONIC"), QStringLiteral("1")},
                {QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1")},
                // Or it takes waits by the steady clock for waits by the one that is set: Qt would
                // not wait for the end of its own threads when the program ends.
                {QStringLiteral("FAKETIME_FORCE_MONOTONIC_FIX"), QStringLiteral("0")},
                {QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0")}};
    }

    /// Empty where there is none.
    static QString Library()
    {
        for (QString const& folder :
             QDir("/usr/lib").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QString const file =
                QStringLiteral("/usr/lib/%1/faketime/libfaketimeMT.so.1").arg(folder);
            if (QFile::exists(file))
                return file;
        }
        return {};
    }

    /// Whether a process with this clock sees what it is set to.
    bool Works() const
    {
        Set(QStringLiteral("+1d"));
        QProcess date;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        auto const variables = Variables();
        for (auto row = variables.constBegin(); row != variables.constEnd(); ++row)
            environment.insert(row.key(), row.value());
        date.setProcessEnvironment(environment);
        date.start(QStringLiteral("date"), {QStringLiteral("+%s")});
        date.waitForFinished();
        Set(QStringLiteral("+0d"));
        constexpr qint64 c_HalfADay = 43'200;
        return date.readAllStandardOutput().trimmed().toLongLong() - std::time(nullptr) >
               c_HalfADay;
    }

private:
    QString File;
};

/// The moments at which a clock is set.
enum class Moment { InATransfer, InARetryPause, AgainAndAgain };

struct Plan {
    Task Job;
    QString Offset;
    Moment When;
};

/// \return how often the clock was set
int SetInTransfer(ProcessGame& p_Game, HostProcess& p_Host, OwnClock const& p_Clock,
                  Plan const& p_Plan)
{
    if (!p_Host.WaitUntil([&] { return p_Game.Read(c_File + ".part").size() >= c_Arrived; }))
        return 0;
    p_Clock.Set(p_Plan.Offset);
    p_Game.Server.OpenGate(p_Game.Content.ServerPath(c_File));
    if (p_Plan.When == Moment::InATransfer)
        return 1;
    int times = 1;
    bool isSet = true;
    // Ends with the host.
    (void)p_Host.WaitUntil([&] {
        isSet = !isSet;
        p_Clock.Set(isSet ? p_Plan.Offset : QStringLiteral("+0d"));
        ++times;
        return false;
    });
    return times;
}

void Try(Plan const& p_Plan, FaultTally& p_Tally)
{
    // The pauses of this run together are shorter; a clock that is waited for takes a day.
    constexpr qint64 c_MostMilliseconds = 20'000;
    constexpr int c_Closed = 4;

    ProcessGame game(p_Plan.Job, ProcessGame::Size::Plain);
    if (p_Plan.When == Moment::AgainAndAgain)
        game.SlowDown();
    QString const rule = "GET " + game.Content.ServerPath(c_File);
    auto script = game.Server.Script(rule);
    if (p_Plan.When == Moment::InARetryPause)
        script.Then(Answer::ClosedBeforeHeaders(), c_Closed);
    else
        script.Then(Answer::SilentAfter(c_Arrived));

    OwnClock const clock(game);
    QElapsedTimer time;
    time.start();
    HostProcess host(game, game.Command(), clock.Variables());
    int times = 0;
    if (p_Plan.When != Moment::InARetryPause) {
        times = SetInTransfer(game, host, clock, p_Plan);
    } else if (host.WaitUntil([&] { return game.Server.ScriptedAnswers(rule) >= c_Closed - 1; })) {
        clock.Set(p_Plan.Offset);
        times = 1;
    }
    Outcome const end = host.Finish();
    game.Judge();
    QStringList faults;
    if (times == 0)
        faults += QStringLiteral("the clock was never set: ") + end.Err;
    if (end.Status == -1)
        faults += QStringLiteral("the host crashed: ") + end.Err;
    if (end.Status == 0 && !game.Wrong().isEmpty())
        faults += QStringLiteral("it was called done and is not complete");
    if (time.elapsed() > c_MostMilliseconds)
        faults += QStringLiteral("it took %1 ms").arg(time.elapsed());
    if (end.Err.contains(QLatin1Char('-') + QStringLiteral("1")) && end.Err.contains("B/s"))
        faults += QStringLiteral("a negative rate: ") + end.Err;
    game.Complete();
    p_Tally.Add(QStringLiteral("%1, %2, moment %3")
                    .arg(ProcessGame::Name(p_Plan.Job), p_Plan.Offset)
                    .arg(static_cast<int>(p_Plan.When)),
                times,
                end.Status == 0 ? QStringLiteral("complete at once")
                                : QStringLiteral("exit %1, then complete").arg(end.Status),
                faults + game.Faults());
}

FaultReport Run(Moment p_When)
{
    FaultTally tally;
    if (OwnClock::Library().isEmpty() ||
        !OwnClock(ProcessGame(Task::Install, ProcessGame::Size::Smallest)).Works()) {
        tally.Add({}, 0, QStringLiteral("not possible here: no library that sets a clock"),
                  QStringList());
        return tally.Report();
    }
    for (Task const task : {Task::Install, Task::Update})
        for (char const* const offset : {"+1d", "-1d"})
            Try({task, QString::fromLatin1(offset), p_When}, tally);
    return tally.Report();
}

} // namespace

std::vector<FaultRow> ClockFaults()
{
    return {{QStringLiteral("clock set by a day in mid-transfer"),
             [] { return Run(Moment::InATransfer); }},
            {QStringLiteral("clock set by a day again and again"),
             [] { return Run(Moment::AgainAndAgain); }},
            {QStringLiteral("clock set by a day in a retry pause"),
             [] { return Run(Moment::InARetryPause); }}};
}

} // namespace Varnholt::TestSupport
