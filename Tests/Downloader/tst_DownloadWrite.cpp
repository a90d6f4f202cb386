#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::Answer;
using TestSupport::DownloadBench;
using TestSupport::DownloadEvent;
using TestSupport::SampleContent;
using Kind = TestSupport::DownloadEvent::Kind;

class DownloadWriteTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFullDiskEndsTheDownloadAtOnceAndQuietly();
    void AFullDiskEndsAContinuedDownloadToo();
    void AnErrorPageThatCannotBeWrittenIsReported();
    void ALostBlockEndsTheAttemptAndIsFetchedByTheNext();
    void EveryBlockReopensTheFile();
};

void DownloadWriteTest::AFullDiskEndsTheDownloadAtOnceAndQuietly()
{
    if (!QFile::exists("/dev/full"))
        QSKIP("no device that is always full");
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000000));
    bench.Script().Then(Answer::SilentAfter(1000)); // there is no end to wait for
    QVERIFY(QFile::link("/dev/full", bench.Path));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Count(Kind::Restarted), 0);
    QCOMPARE(bench.Completion().BytesOnDisk, qint64{0});
    QVERIFY(!bench.Completion().Aborted);
    // Not whole, and nothing wrong stands there: when there is room again it can be continued.
    QVERIFY(bench.Completion().Continuable);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadWriteTest::AFullDiskEndsAContinuedDownloadToo()
{
    if (!QFile::exists("/dev/full"))
        QSKIP("no device that is always full");
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(3000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Truncated(1000));
    QString const aside = bench.Path + ".aside";
    bench.OnEvent = [&](DownloadEvent const& p_Event) { // on the download thread
        if (p_Event.What == Kind::Restarted && !QFile::exists(aside))
            QVERIFY(QFile::rename(bench.Path, aside) && QFile::link("/dev/full", bench.Path));
    };
    QVERIFY(bench.Run());
    QCOMPARE(bench.Ranges(), QStringList({"-", "bytes=1000-"}));
    QCOMPARE(bench.Count(Kind::Restarted), 1);
    QVERIFY(bench.Completion().Continuable);
    QCOMPARE(TestSupport::ReadFile(aside), bytes.left(1000));
}

void DownloadWriteTest::AnErrorPageThatCannotBeWrittenIsReported()
{
    if (!QFile::exists("/dev/full"))
        QSKIP("no device that is always full");
    DownloadBench bench;
    bench.Script().Always(Answer::Status(404));
    QVERIFY(QFile::link("/dev/full", bench.Path));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Host->Errors(), QStringList("Http Error 203"));
}

void DownloadWriteTest::ALostBlockEndsTheAttemptAndIsFetchedByTheNext()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(3000);
    bench.Serve(bytes);
    Answer answer = Answer::Drip(100, 40);
    answer.HeldAfter = 2000; // there is no end to wait for
    bench.Script().Then(answer);
    bool isLost = false;
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Update && !isLost && p_Event.BytesOnDisk > 0) {
            isLost = true;
            QVERIFY(QFile::rename(bench.Path, bench.Path + ".aside"));
            QVERIFY(QDir().mkpath(bench.Path));
        }
    };
    QVERIFY(bench.Run());
    QVERIFY(bench.Completion().Continuable);
    QCOMPARE(bench.Host->Errors(), QStringList());
    QVERIFY(QDir().rmdir(bench.Path) && QFile::rename(bench.Path + ".aside", bench.Path));
    QByteArray const begun = bench.File();
    QVERIFY(begun.size() < 2000);
    QCOMPARE(begun, bytes.left(begun.size()));
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), bytes);
    QCOMPARE(bench.Ranges().last(), QString("bytes=%1-").arg(begun.size()));
}

void DownloadWriteTest::EveryBlockReopensTheFile()
{
    // The file is closed between two blocks, and what is there at the next one is appended to.
    DownloadBench bench;
    QByteArray const bytes(2000, 'x');
    bench.Serve(bytes);
    bench.Script().Then(Answer::Drip(100, 40));
    bool isTaken = false;
    qint64 taken = 0;
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Update && !isTaken && p_Event.BytesOnDisk > 0) {
            isTaken = QFile::rename(bench.Path, bench.Path + ".taken");
            taken = p_Event.BytesOnDisk;
        }
    };
    QVERIFY(bench.Run());
    QVERIFY(isTaken);
    QCOMPARE(TestSupport::ReadFile(bench.Path + ".taken").size(), static_cast<int>(taken));
    QCOMPARE(bench.File().size(), bytes.size() - static_cast<int>(taken));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::DownloadWriteTest)
#include "tst_DownloadWrite.moc"
