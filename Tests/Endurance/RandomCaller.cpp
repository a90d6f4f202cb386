#include "Tests/Endurance/RandomCaller.hpp"

#include <QCoreApplication>
#include <QMutexLocker>
#include <QThread>

namespace Varnholt::TestSupport {

namespace {

constexpr unsigned long c_LookMicroseconds = 500;
constexpr int c_LooksPerAsyncClosure = 15;
/// In a row: the worker may be in a closure.
constexpr int c_IdleLooks = 8;

} // namespace

RandomCaller::RandomCaller(EnduringGame& p_Game, quint32 p_Seed)
    : Game(p_Game)
    , Random(p_Seed)
    , Servers(Random, p_Game.Content, {&p_Game.Server, &p_Game.Mirror})
    , Disk(Random, p_Game.Content, p_Game.Folder)
    , Dog([this] { return Describe(); })
{
    AddOperations();
    AddPumping();
    AddWorld();
}

void RandomCaller::AddOperations()
{
    auto const add = [this](int p_Wild, int p_Steady, char const* p_Name, auto p_Call) {
        Add(p_Wild, p_Steady, p_Name, [p_Call] {
            p_Call();
            return QString();
        });
    };
    add(12, 14, "SuspendDownload", [this] { Game.App.SuspendDownload(); });
    add(12, 16, "ResumeDownload", [this] { Game.App.ResumeDownload(); });
    add(8, 1, "Repair", [this] { Game.App.Repair(); });
    add(6, 1, "AbortRepair", [this] { Game.App.AbortRepair(); });
    Add(10, 1, "Install", [this] { return Install(); });
    Add(4, 1, "Uninstall", [this] { return Uninstall(); });
    Add(3, 2, "Start", [this] { return Start(); });
    // A transfer that was let go meets the next one of the same file.
    Add(2, 4, "Uninstall and install", [this] {
        Game.App.Uninstall(Random.OneIn(2));
        Game.App.Install(Game.Folder, false);
        return QString();
    });
}

void RandomCaller::AddPumping()
{
    Add(14, 12, "one sync closure",
        [this] { return Game.Host.RunNextSync() ? QString() : QStringLiteral("none"); });
    Add(14, 8, "one async closure", [this] {
        bool const ran = Game.IsByHand() && Game.Host.RunNextAsync();
        return ran ? QString() : QStringLiteral("none");
    });
    Add(14, 14, "events", [] {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return QString();
    });
    Add(16, 16, "run", [this] { return Pump(24, [] { return false; }); });
    Add(4, 4, "run on", [this] { return Pump(120, [] { return false; }); });
    Add(8, 4, "run to a size answer", [this] {
        auto const replies = [this] {
            QMutexLocker const lock(&Game.App.RunMutex);
            return Game.App.SizeRepliesReceived;
        };
        return Pump(60, [replies, before = replies()] { return replies() != before; });
    });
    Add(12, 20, "run to the next transfer", [this] {
        auto const* const before = Game.App.CurrentDownload;
        return Pump(80, [this, before] {
            return Game.App.CurrentDownload != nullptr && Game.App.CurrentDownload != before;
        });
    });
    Add(6, 8, "wait for a transfer's end", [this] { return WaitForEnd(); });
}

void RandomCaller::AddWorld()
{
    Add(14, 10, "servers", [this] { return Servers.Change(); });
    Add(8, 3, "disk", [this] { return Disk.Do(); });
    Add(6, 2, "host", [this] { return ChangeHost(); });
}

void RandomCaller::Add(int p_Wild, int p_Steady, char const* p_Name, std::function<QString()> p_Run)
{
    Kinds.push_back({{p_Wild, p_Steady}, p_Name, std::move(p_Run)});
    WeightSums[Wild] += p_Wild;
    WeightSums[Steady] += p_Steady;
}

void RandomCaller::Step()
{
    constexpr int c_StepsOfAMood = 20;
    if (StepsOfThisMood++ % c_StepsOfAMood == 0)
        ChangeMood();
    int draw = Random.Below(WeightSums[Now]);
    for (Kind const& kind : Kinds) {
        draw -= kind.Weights[Now];
        if (draw < 0)
            return Do(kind.Name, kind.Run);
    }
}

void RandomCaller::ChangeMood()
{
    Now = Random.OneIn(2) ? Wild : Steady;
    if (Now == Wild)
        return;
    // Something to fetch, or the calls would find an idle module most of the time.
    Servers.Cure();
    Servers.SpoilTransfers();
    CalmHost();
    Disk.RemoveMost();
    Do(QStringLiteral("Install what is missing"), [this] {
        Game.App.Install(Game.Folder, false);
        return QString();
    });
    if (Random.OneIn(4))
        return;
    bool const streamed = Random.OneIn(3);
    Do(QStringLiteral("run to its files"), [this, streamed] {
        return Pump(600, [this, streamed] {
            return Game.App.CurrentDownload != nullptr &&
                   (!streamed || !Game.App.IsDownloadingBase);
        });
    });
}

void RandomCaller::Do(QString const& p_Name, std::function<QString()> const& p_Run)
{
    Steps.Add(p_Name);
    QString details;
    Dog.Watch(p_Name, [&] { details = p_Run(); });
    if (!details.isEmpty())
        Steps.Add(QStringLiteral("    ") + details);
    if (QStringList const violations = Game.Violations();
        FirstViolation.isEmpty() && !violations.isEmpty())
        FirstViolation = violations.join(QLatin1Char('\n')) + QLatin1Char('\n') + Describe();
}

QString RandomCaller::Install()
{
    QString const folder = Random.OneIn(5) ? Game.Elsewhere : Game.Folder;
    bool const flag = Random.OneIn(3);
    Game.App.Install(folder, flag);
    return QStringLiteral("%1 %2").arg(folder).arg(flag);
}

QString RandomCaller::Uninstall()
{
    bool const flag = Random.OneIn(2);
    Game.App.Uninstall(flag);
    return QVariant(flag).toString();
}

QString RandomCaller::Start()
{
    bool const credentials = Random.OneIn(2);
    bool const started = credentials
                             ? Game.App.Start(QStringLiteral("user"), QStringLiteral("secret"))
                             : Game.App.Start(QString(), QString());
    return started ? QStringLiteral("started") : QStringLiteral("not started");
}

QString RandomCaller::Pump(int p_Most, std::function<bool()> const& p_Condition)
{
    int const looks = Random.Between(1, p_Most);
    int done = 0;
    int idle = 0;
    for (; done < looks && idle < c_IdleLooks && !p_Condition(); ++done) {
        idle = Game.IsBusy() ? 0 : idle + 1;
        Game.RunEvents();
        // Now and then only: a poll or a clean-up may sleep for 100 ms, here on this very thread.
        if (Game.IsByHand() && done % c_LooksPerAsyncClosure == 0)
            Game.Host.RunNextAsync();
        QThread::usleep(c_LookMicroseconds);
    }
    return QStringLiteral("%1 of %2 looks").arg(done).arg(looks);
}

/// Its completion is queued then.
QString RandomCaller::WaitForEnd()
{
    constexpr int c_Most = 100;
    auto const* const transfer = Game.App.CurrentDownload;
    if (transfer == nullptr)
        return QStringLiteral("none");
    for (int i = 0; i < c_Most && !transfer->AbortAcknowledged; ++i)
        QThread::usleep(c_LookMicroseconds);
    return transfer->AbortAcknowledged ? QStringLiteral("ended") : QStringLiteral("goes on");
}

QString RandomCaller::ChangeHost()
{
    switch (Random.Below(6)) {
    case 0:
        Game.Host.DownloadBlocked = true;
        return QStringLiteral("blocks downloads");
    case 1:
        Game.ShowGameRunning(true);
        return QStringLiteral("the game runs");
    case 2:
        Game.Host.ContinueAnswersLeft = Random.Below(60);
        return QStringLiteral("wants the module to stop");
    default:
        CalmHost();
        return QStringLiteral("is calm");
    }
}

void RandomCaller::CalmHost()
{
    Game.Host.DownloadBlocked = false;
    Game.Host.ContinueAnswersLeft = -1;
    Game.ShowGameRunning(false);
}

QString RandomCaller::Heal()
{
    Steps.Add(QStringLiteral("all is well again"));
    Servers.Cure();
    Disk.ClearTheWay();
    CalmHost();
    int const choice = Random.Below(4);
    bool const flag = Random.OneIn(2);
    bool const here = Game.App.IsInstalled() && Game.App.GetInstallationPath() == Game.Folder;
    Do(QStringLiteral("last %1 %2 %3").arg(choice).arg(flag).arg(here), [&] {
        if (choice == 0 && here)
            Game.App.Repair();
        else if (choice == 1 && here)
            Game.App.ResumeDownload();
        else if (choice == 2 && here)
            Game.App.AbortRepair();
        else
            Game.App.Install(Game.Folder, flag);
        return QString();
    });
    // A resumed transfer may be one that has fallen silent for good.
    if (choice != 1 && !Game.Finish())
        return QStringLiteral("does not come to an end\n") + Describe();
    QString wrong = Repair();
    // With its restarts used up, a file that was spoilt before is given up, and clean the next
    // time.
    if (!wrong.isEmpty() && Game.Log.CountContaining(QStringLiteral("(ToManyRetry)")) > 0)
        wrong = Repair();
    Game.Log.Clear();
    return FirstViolation.isEmpty() ? wrong : FirstViolation;
}

QString RandomCaller::Repair()
{
    Game.Log.Clear();
    Do(QStringLiteral("last repair"), [this] {
        Game.App.Repair();
        return QString();
    });
    if (!Game.Finish())
        return QStringLiteral("the repair does not come to an end\n") + Describe();
    QStringList const faults = Game.Faults();
    return faults.isEmpty() ? QString() : faults.join(QLatin1Char('\n')) + '\n' + Describe();
}

QString RandomCaller::Describe() const
{
    return Steps.Text() + QLatin1Char('\n') + Game.Describe();
}

} // namespace Varnholt::TestSupport
