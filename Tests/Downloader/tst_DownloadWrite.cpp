#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"

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
    void AFullDiskEndsTheDownloadQuietly();
    void BehindALostBlockNothingIsWritten();
    void ALostBlockIsFetchedByTheNextAttempt();
    void EveryBlockReopensTheFile();
};

void DownloadWriteTest::AFullDiskEndsTheDownloadQuietly()
{
    if (!QFile::exists("/dev/full"))
        QSKIP("no device that is always full");
    DownloadBench bench;
    bench.Serve(SampleContent::Bytes(1000000));
    QVERIFY(QFile::link("/dev/full", bench.Path));
    QVERIFY(bench.Run());
    QCOMPARE(bench.Count(Kind::Complete), 1);
    QCOMPARE(bench.Count(Kind::Restarted), 0);
    QCOMPARE(bench.Completion().BytesOnDisk, qint64{0});
    // Not whole, and nothing wrong stands there: when there is room again it can be continued.
    QVERIFY(bench.Completion().Continuable);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadWriteTest::BehindALostBlockNothingIsWritten()
{
    // The file is out of reach for a while: blocks of that time are lost, and what comes later must
    // not be appended to what came before.
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(3000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Drip(100, 40));
    QString const aside = bench.Folder.path() + "/aside";
    qint64 written = 0;
    bool isBack = false;
    bench.OnEvent = [&](DownloadEvent const& p_Event) { // all on the download thread
        if (p_Event.What != Kind::Update || isBack)
            return;
        if (written == 0 && p_Event.BytesOnDisk > 0) {
            written = p_Event.BytesOnDisk;
            QVERIFY(QFile::rename(bench.Path, aside) && QDir().mkpath(bench.Path));
        } else if (written > 0 && p_Event.CurrentBytes > written) {
            isBack = QDir().rmdir(bench.Path) && QFile::rename(aside, bench.Path);
        }
    };
    QVERIFY(bench.Run());
    QVERIFY(isBack);
    QVERIFY(written < bytes.size());
    QCOMPARE(bench.File(), bytes.left(static_cast<int>(written)));
    QVERIFY(bench.Completion().Continuable);
    QCOMPARE(bench.Host->Errors(), QStringList());
}

void DownloadWriteTest::ALostBlockIsFetchedByTheNextAttempt()
{
    DownloadBench bench;
    QByteArray const bytes = SampleContent::Bytes(3000);
    bench.Serve(bytes);
    bench.Script().Then(Answer::Drip(100, 40));
    bool isLost = false;
    bench.OnEvent = [&](DownloadEvent const& p_Event) {
        if (p_Event.What == Kind::Update && !isLost && p_Event.BytesOnDisk > 0) {
            isLost = true;
            QVERIFY(QFile::rename(bench.Path, bench.Path + ".aside"));
            QVERIFY(QDir().mkpath(bench.Path));
        }
    };
    QVERIFY(bench.Run());
    QVERIFY(QDir().rmdir(bench.Path) && QFile::rename(bench.Path + ".aside", bench.Path));
    QByteArray const begun = bench.File();
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

QTEST_GUILESS_MAIN(Varnholt::Launcher::DownloadWriteTest)
#include "tst_DownloadWrite.moc"
