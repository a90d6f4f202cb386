#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr char c_Variable[] = "VARNHOLT_CONTENT_BASE_URL";
constexpr int c_SoonMilliseconds = 1'000; // a tenth of a second, on a machine that has much to do
constexpr qint64 c_SecondsOfHashing = qint64{8} * 1024 * 1024 * 1024; // and no room

/// Keeps the module's thread from everything else, until its end.
class BusyModule {
public:
    explicit BusyModule(Host::HostSession& p_Session)
    {
        QMetaObject::invokeMethod(
            QAbstractEventDispatcher::instance(&p_Session.Thread()),
            [began = &Began, go = Go] {
                began->release();
                go->acquire();
            },
            Qt::QueuedConnection);
        Began.acquire();
    }
    ~BusyModule() { Go->release(); }
    BusyModule(BusyModule const&) = delete;
    BusyModule& operator=(BusyModule const&) = delete;

private:
    QSemaphore Began;
    std::shared_ptr<QSemaphore> Go = std::make_shared<QSemaphore>();
};

} // namespace

/// Sessions that end, whatever the module is at.
class HostClosingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ARequestWithoutAModuleEndsToo();
    void ARequestAfterTheEndEndsToo();
    void AnInterruptionEndsTheRunOfABusyModule();
    void ABusyModuleIsNotWaitedFor();
    void ARunUnderWayEndsWhenTheSessionCloses();
    void TheProcessIsAsBefore();
    void AStopIsSeenInTheMidstOfAFile();
    void AStopIsSeenByABusyModule();
};

void HostClosingTest::ARequestWithoutAModuleEndsToo()
{
    SessionGame game;
    game.Options.ModuleFile = "/nowhere/module.so";
    QVERIFY(!game.Open());
    QCOMPARE(game.Install(), QString("module-not-loaded"));
    QCOMPARE(game.EndedIds, std::vector<quint64>{1});
}

void HostClosingTest::ARequestAfterTheEndEndsToo()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QSignalSpy closed(&game.Session(), &Host::HostSession::Closed);
    game.Session().Close();
    QVERIFY(closed.wait());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.Results.empty()); // a moment later at the soonest
    QCOMPARE(game.End(), QString("module-not-loaded"));
    QCOMPARE(game.EndedIds, std::vector<quint64>{1});
}

void HostClosingTest::AnInterruptionEndsTheRunOfABusyModule()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Server.Script(game.Content.VersionPath()).Then(Answer::SilentBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPhase(Host::RunPhase::Connecting));
    {
        BusyModule const busy(game.Session());
        QElapsedTimer clock;
        clock.start();
        game.Session().Interrupt();
        QCOMPARE(game.End(), QString("interrupted"));
        QVERIFY2(clock.elapsed() < c_SoonMilliseconds, QByteArray::number(clock.elapsed()));
    }
    QCOMPARE(game.Install(), QString("done")); // by the same session
    QCOMPARE(game.EndedIds.size(), std::size_t(1));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostClosingTest::ABusyModuleIsNotWaitedFor()
{
    SessionGame game;
    game.AddFiles().Publish();
    auto session = std::make_unique<Host::HostSession>(game.Options);
    QSignalSpy opened(session.get(), &Host::HostSession::Opened);
    session->Open();
    QVERIFY(opened.wait());
    {
        BusyModule const busy(*session);
        QElapsedTimer clock;
        clock.start();
        session.reset();
        QVERIFY2(clock.elapsed() < c_SoonMilliseconds, QByteArray::number(clock.elapsed()));
        QVERIFY(Host::HostSession::HasLeftModule());
        QVERIFY(!game.Open()); // as long as that has the process's one place
        game.Close();
    }
    QVERIFY(game.WaitUntil([] { return !Host::HostSession::HasLeftModule(); }));
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
}

void HostClosingTest::ARunUnderWayEndsWhenTheSessionCloses()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Server.Script(game.Content.VersionPath()).Then(Answer::SilentBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QSignalSpy closed(&game.Session(), &Host::HostSession::Closed);
    game.Session().Close();
    game.Session().Close();
    QVERIFY(closed.wait());
    QCOMPARE(game.End(), QString("interrupted"));
    QCOMPARE(closed.size(), 1);
    QCOMPARE(game.Results.size(), std::size_t(1));
}

void HostClosingTest::TheProcessIsAsBefore()
{
    QTemporaryDir const folder;
    QString const former = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    for (bool const isSet : {true, false}) {
        if (isSet)
            qputenv(c_Variable, "http://before.example/");
        else
            qunsetenv(c_Variable);
        {
            SessionGame game;
            game.AddFiles().Publish();
            QVERIFY(game.Open());
            QCOMPARE(QDir::currentPath(), QCoreApplication::applicationDirPath());
            QVERIFY(qgetenv(c_Variable).startsWith("http://127.0.0.1:"));
        }
        QCOMPARE(qEnvironmentVariableIsSet(c_Variable), isSet);
        QCOMPARE(qgetenv(c_Variable), QByteArray(isSet ? "http://before.example/" : ""));
        QCOMPARE(QDir::currentPath(), QDir(folder.path()).canonicalPath());
    }
    QVERIFY(QDir::setCurrent(former));
}

void HostClosingTest::AStopIsSeenInTheMidstOfAFile()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QVERIFY(QFile::resize(game.Path("readme.txt"), c_SecondsOfHashing));
    game.Start(RequestType::Verify);
    QVERIFY(game.WaitForPhase(Host::RunPhase::Verifying));
    QElapsedTimer clock;
    clock.start();
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    game.Close();
    QVERIFY2(clock.elapsed() < c_SoonMilliseconds, QByteArray::number(clock.elapsed()));
}

/// The module's own question has the answer before its thread, which hashes what has arrived, hears
/// of it.
void HostClosingTest::AStopIsSeenByABusyModule()
{
    constexpr int c_Most = 59'000;

    QString const file = QStringLiteral("Data/base.MPQ");
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put(file, "damaged");
    QString const path = game.Content.ServerPath(file);
    game.Server.Script("GET " + path).Then(Answer::SilentAfter(c_Most));
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForPart(file, c_Most));
    {
        BusyModule const busy(game.Session());
        game.Server.OpenGate(path);
        QVERIFY(game.WaitForPart(file, c_Most + 1'000));
        QVERIFY(QFile::resize(game.Path(file + ".part"), c_SecondsOfHashing));
    }
    QVERIFY(game.WaitUntil([&] { return !game.Has(file); })); // the new one is looked at next
    QElapsedTimer clock;
    clock.start();
    game.Session().Interrupt();
    QCOMPARE(game.End(), QString("interrupted"));
    game.Close();
    QVERIFY2(clock.elapsed() < c_SoonMilliseconds, QByteArray::number(clock.elapsed()));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostClosingTest)
#include "tst_HostClosing.moc"
