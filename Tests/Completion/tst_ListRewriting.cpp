#include "Tests/Completion/HandMadeRun.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

class ListRewritingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFinishedFileIsStruckFromItsList_data();
    void AFinishedFileIsStruckFromItsList();
    void TheOtherListIsLeftAlone();
    void ARetriedFileStandsLast();
    void AFileThatIsGivenUpIsStruck();
    void AListThatCannotBeWrittenStopsNothing();
    void AStoppedReadingLeavesTheListAsItIs();
    void TheListIsRewrittenBeforeTheFileIsVerified();
};

void ListRewritingTest::AFinishedFileIsStruckFromItsList_data()
{
    QTest::addColumn<bool>("base");
    QTest::newRow("base files") << true;
    QTest::newRow("streamed files") << false;
}

void ListRewritingTest::AFinishedFileIsStruckFromItsList()
{
    QFETCH(bool, base);
    HandMadeRun run;
    for (char const* const file : {"a", "b", "c"})
        run.Add({file, file, 0x20, {}, !base});
    run.List(base);
    run.Put(run.PendingList(), "c\nother\na\nb\n");
    run.Complete("a");
    QCOMPARE(run.Read(run.PendingList()), QByteArray("c\nother\nb\n"));
    run.Complete("b");
    QCOMPARE(run.Read(run.PendingList()), QByteArray("c\nother\n"));
}

void ListRewritingTest::TheOtherListIsLeftAlone()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    run.Put("ToDownloadBase.db", "a\n");
    run.Put("ToDownload.db", "a\n");
    run.Complete("a");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray(""));
    QCOMPARE(run.Read("ToDownload.db"), QByteArray("a\n"));
}

// Fetched after all others, it stands behind all others too.
void ListRewritingTest::ARetriedFileStandsLast()
{
    HandMadeRun run;
    run.Add({"a", "a", 0x20}).Add({"b", "b", 0x20}).Add({"c", "c", 0x20});
    run.List();
    run.Put("ToDownloadBase.db", "a\nb\nc\n");
    run.Complete("wrong");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("b\nc\na\n"));
    QCOMPARE(run.Listed(), QStringList({"a", "b", "c", "a"}));
    run.Complete("b");
    run.Complete("wrong");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("a\nc\n"));
    run.Complete("a");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("c\n"));
}

void ListRewritingTest::AFileThatIsGivenUpIsStruck()
{
    HandMadeRun run;
    run.Add({"a", "a", 0x20}).Add({"b", "b", 0x20});
    run.List();
    run.Put("ToDownloadBase.db", "a\nb\n");
    run.App.DownloadRetryCount = 5;
    run.Complete("wrong");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("b\n"));
    QCOMPARE(run.Listed(), QStringList({"a", "b"}));
}

void ListRewritingTest::AListThatCannotBeWrittenStopsNothing()
{
    HandMadeRun run;
    run.Add({"a", "a"}).Add({"b", "b"});
    run.List();
    QVERIFY(QDir().mkpath(run.Path("ToDownloadBase.db/folder in its place")));
    run.Complete("a");
    QCOMPARE(run.Read("a"), QByteArray("a"));
    QCOMPARE(run.App.CurrentDownloadIndex, 1u);
    QCOMPARE(run.Host.Errors(), QStringList());
}

// Written back as far as it was read, it would lose the lines behind.
void ListRewritingTest::AStoppedReadingLeavesTheListAsItIs()
{
    HandMadeRun run;
    run.Add({"a", "a", 0x20}).Add({"b", "b", 0x20});
    run.List();
    run.Put("ToDownloadBase.db", "a\nb\nc\n");
    run.AnswerContinue([](int p_Question) { return p_Question <= 1; });
    run.Complete("a");
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("a\nb\nc\n"));
}

void ListRewritingTest::TheListIsRewrittenBeforeTheFileIsVerified()
{
    HandMadeRun run;
    run.Add({"a", "right", 0x20}).Add({"b", "b"}).Put("a/folder in its place", "");
    run.List();
    run.Put("ToDownloadBase.db", "a\nb\n");
    QByteArray listWhenReported;
    run.Host.OnError = [&](QString const&) { listWhenReported = run.Read("ToDownloadBase.db"); };
    run.Complete("right");
    QCOMPARE(listWhenReported, QByteArray("b\n"));
    QCOMPARE(run.Read("ToDownloadBase.db"), QByteArray("b\na\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ListRewritingTest)
#include "tst_ListRewriting.moc"
