#include "Tests/Install/PluginGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <cstdlib>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Page = "<html><body>Some page of a hotel's network</body></html>";

Answer Bytes(QByteArray const& p_Bytes)
{
    Answer answer;
    return answer.Body(p_Bytes);
}

void AddAFewFiles(SampleContent& p_Content)
{
    p_Content.Add({"a", SampleContent::Bytes(4000), 0x20}).Add({"b", "b"}).Add({"c c", "c"});
    p_Content.Add({"s", SampleContent::Bytes(3000, 2), 0, {}, true});
}

} // namespace

class BadContentServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ADeadMirrorAmongTwoStopsTheSizePassAndLosesNothing();
    void AMissingContentFileIsGivenUpAndTheOthersArrive();
    void APageInsteadOfAContentFileIsGivenUpAndTheOthersArrive();
    void AServerThatCutsEveryBodyOnceStillDelivers();
    void AServerThatServesWrongBytesOnceStillDelivers();
    void AServerWithoutRangesStillDelivers();
    void AServerThatFailsNowAndThenStillDelivers();
};

// There is no second try on another mirror: the run stops and its host begins it again.
void BadContentServerTest::ADeadMirrorAmongTwoStopsTheSizePassAndLosesNothing()
{
    std::srand(1);
    PluginGame game;
    for (int i = 0; i < 10; ++i)
        game.Content.Add({QString("file %1").arg(i), QByteArray::number(i), 0x20});
    game.Content.Add({"s", "s", 0, {}, true});
    ScriptedServer dead(QStringLiteral("127.0.0.2"));
    game.Content.Publish(game.Server, {&game.Server, &dead});
    dead.Stop();
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Progress().Mode, 2);
    QCOMPARE(game.Progress().DetailText, QString("Requesting files size..."));
    QCOMPARE(game.Host().FinishedCount.load(), 0);
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
    QCOMPARE(game.Read("ToDownloadBase.db").count('\n'), 10);

    game.Content.Publish(game.Server);
    game.Restart();
    QVERIFY(game.Init());
    // The first build did not come to the streamed files: it goes on until it has.
    QCOMPARE(game.Wrong(), QStringList());
}

void BadContentServerTest::AMissingContentFileIsGivenUpAndTheOthersArrive()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Remove(game.Content.ServerPath("b"));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList("b"));
    QCOMPARE(game.Host().Errors().count("Http Error 203"), 6);
    QCOMPARE(game.Log.CountContaining("(ToManyRetry) Download aborded for "), 1);
    QCOMPARE(game.Host().FinishedCount.load(), 1);
    QCOMPARE(game.App().UISetting.State, 2);
    game.Content.Publish(game.Server);
    game.Restart();
    QVERIFY(game.Init());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadContentServerTest::APageInsteadOfAContentFileIsGivenUpAndTheOthersArrive()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script(game.Content.ServerPath("a")).Always(Bytes(c_Page));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList("a"));
    QCOMPARE(game.Log.CountContaining("(MD5) Download restarted for "), 5);
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
    game.Server.ClearScript(game.Content.ServerPath("a"));
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
}

void BadContentServerTest::AServerThatCutsEveryBodyOnceStillDelivers()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    for (SampleFile const& file : game.Content.Files)
        game.Server.Script(game.Content.ServerPath(file.Path))
            .Then(Answer::Normal())
            .Then(Answer::Truncated(file.Bytes.size() / 2));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Host().Errors(), QStringList());
}

void BadContentServerTest::AServerThatServesWrongBytesOnceStillDelivers()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    for (SampleFile const& file : game.Content.Files)
        game.Server.Script(game.Content.ServerPath(file.Path))
            .Then(Answer::Normal())
            .Then(Bytes(QByteArray(file.Bytes.size(), '?')));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Log.CountContaining("(MD5) Download restarted for "), 4);
}

void BadContentServerTest::AServerWithoutRangesStillDelivers()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script("*").Always(Answer::IgnoringRange());
    game.Put("a.part", game.Content.Files[0].Bytes.left(1000));
    game.Put("s.part", "not the beginning of it");
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
}

void BadContentServerTest::AServerThatFailsNowAndThenStillDelivers()
{
    PluginGame game;
    AddAFewFiles(game.Content);
    game.Content.Publish(game.Server);
    game.Server.Script(game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::Status(503, c_Page));
    game.Server.Script(game.Content.ServerPath("c c"))
        .Then(Answer::Normal())
        .Then(Answer::Reset(0))
        .Then(Answer::Status(500, c_Page));
    game.Server.Script(game.Content.ServerPath("s"))
        .Then(Answer::Normal())
        .Then(Answer::Reset(1500));
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.FilesEndingWith(".part"), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BadContentServerTest)
#include "tst_BadContentServer.moc"
