#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>
#include <cstring>

namespace Varnholt::TestSupport {

namespace {

/// A file that takes so long to read that a run cannot be over before it is interrupted; holes take
/// no room on the disk.
[[nodiscard]] bool PutEndlessFile(PublishedGame const& p_Game)
{
    p_Game.Put("endless", "");
    return QFile::resize(p_Game.SourcePath("endless"), Q_INT64_C(200'000'000'000));
}

/// Waits until a run has the tree.
bool IsAtWork(PublishedGame const& p_Game, ProgramRun const& p_Run)
{
    QByteArray const name = "process " + QByteArray::number(p_Run.Id()) + " on ";
    return QTest::qWaitFor([&] { return p_Game.Read(".varnholt-publish.lock").contains(name); },
                           60000);
}

} // namespace

/// A "build" that is ended before its end.
class BuildInterruptionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnInterruptionPublishesNothing_data();
    void AnInterruptionPublishesNothing();
    void AKilledRunDoesNotStopTheNext();
    void AFirstBuildThatWasEndedIsGoneOnWith_data();
    void AFirstBuildThatWasEndedIsGoneOnWith();
};

void BuildInterruptionTest::AnInterruptionPublishesNothing_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void BuildInterruptionTest::AnInterruptionPublishesNothing()
{
    QFETCH(int, signal);
    PublishedGame game;
    QCOMPARE(RunProgram(game.BuildArguments()).Status, 0);
    Tree const before = game.Published();
    QVERIFY(PutEndlessFile(game));
    ProgramRun run(game.BuildArguments({}, "build_2"));
    QVERIFY(IsAtWork(game, run));
    run.Signal(signal);
    ProgramResult const result = run.Finish();
    QCOMPARE(result.Status, 128 + signal);
    QCOMPARE(result.Output, QByteArray());
    QCOMPARE(result.Errors,
             QByteArray("varnholt-publish: interrupted, nothing was published; the next "
                        "run goes on from here\n"));
    QCOMPARE(game.Published(), before);
}

void BuildInterruptionTest::AKilledRunDoesNotStopTheNext()
{
    PublishedGame game;
    QVERIFY(PutEndlessFile(game));
    ProgramRun run(game.BuildArguments());
    QVERIFY(IsAtWork(game, run));
    ProgramResult const second = RunProgram(game.BuildArguments());
    QCOMPARE(second.Status, 1);
    QVERIFY2(second.Errors.contains(": another run is publishing there"),
             second.Errors.constData());
    run.Signal(SIGKILL);
    QCOMPARE(run.Finish().Status, -1);
    QVERIFY(game.Read("pelmora_app/version.json").isNull());
    QVERIFY(QFile::remove(game.SourcePath("endless")));
    ProgramResult const next = RunProgram(game.BuildArguments());
    QCOMPARE(next.Errors, QByteArray());
    QCOMPARE(next.Status, 0);
}

void BuildInterruptionTest::AFirstBuildThatWasEndedIsGoneOnWith_data()
{
    QTest::addColumn<int>("signal");
    for (int const signal : {SIGKILL, SIGINT, SIGTERM})
        QTest::newRow(strsignal(signal)) << signal;
}

void BuildInterruptionTest::AFirstBuildThatWasEndedIsGoneOnWith()
{
    constexpr int c_Bytes = 300'000;

    QFETCH(int, signal);
    PublishedGame game;
    for (char letter = 'a'; letter < 'f'; ++letter)
        game.Put(QString(QLatin1Char(letter)), QByteArray(c_Bytes, letter));
    QVERIFY(PutEndlessFile(game));
    game.Age();
    {
        // One thread is kept by the endless file, the other gets through all the rest.
        ProgramRun run(game.BuildArguments({"--jobs", "2"}));
        QVERIFY(QTest::qWaitFor(
            [&] {
                return game.Read(".varnholt-publish.pelmora_app.staged/journal")
                    .endsWith(" Game\n");
            },
            60000));
        run.Signal(signal);
        run.Finish();
    }
    QCOMPARE(game.Published(), Tree());
    QVERIFY(QFile::remove(game.SourcePath("endless")));
    ProgramResult const next = RunProgram(game.BuildArguments());
    QCOMPARE(next.Errors, QByteArray());
    QVERIFY2(next.Output.contains("\nfrom index   1500008 bytes in 6 files\n"),
             next.Output.constData());
    QVERIFY(next.Output.contains("\nnew content  1500008 bytes in 6 files\n"));
    QCOMPARE(RunProgram({"verify", "--output", game.Options.Output}).Status, 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BuildInterruptionTest)
#include "tst_BuildInterruption.moc"
