#include "Host/Window/Pages/GamePage.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/LoopWatch.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <atomic>

namespace Varnholt::TestSupport {

using Host::RunPhase;

/// Whatever the module is busy with, the window answers.
class WindowResponseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DuringAnInstallationFromASilentServer();
    void WhileAFileIsCompleted();
    void WhileTheDigestOfALargeFileIsMade();
    void DuringASlowListingOfProcesses();
    void WhenItIsClosed();

private:
#ifdef VARNHOLT_SANITIZED
    static constexpr qint64 c_Most = 250; ///< milliseconds; everything takes several times as long
#else
    static constexpr qint64 c_Most = 50; ///< milliseconds
#endif
    /// Plays a scene, which sets the longest time without an answer.
    void Answers(std::function<void()> const& p_Scene);

    qint64 Longest = 0;                ///< milliseconds
    static constexpr int c_Busy = 400; ///< milliseconds in which the module does nothing else
};

/// Once is enough: where every processor is busy, who holds a lock may have to wait for one.
void WindowResponseTest::Answers(std::function<void()> const& p_Scene)
{
    constexpr int c_Attempts = 3;

    Longest = c_Most;
    for (int i = 0; i < c_Attempts && Longest >= c_Most && !QTest::currentTestFailed(); ++i)
        p_Scene();
    QVERIFY2(Longest < c_Most, QByteArray::number(Longest));
}

void WindowResponseTest::DuringAnInstallationFromASilentServer()
{
    Answers([this] {
        WindowGame game;
        game.AddFiles().Publish();
        QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
        LoopWatch const watch;
        game.Open();
        game.Install();
        QVERIFY(game.WaitUntil(
            [&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
        int const before = watch.Ticks();
        QVERIFY(game.WaitUntil([&] { return watch.Ticks() > before + 100; }));
        game.Server.OpenGate(gate);
        QVERIFY(game.WaitForPrimary("Play"));
        Longest = watch.Longest();
    });
}

/// As long as its way to the disk takes.
void WindowResponseTest::WhileAFileIsCompleted()
{
    Answers([this] {
        WindowGame game;
        game.AddFiles().Publish();
        std::atomic<int> times{0};
        game.Options.Flush = [&](QString const&) {
            QThread::msleep(c_Busy);
            ++times;
        };
        game.Open();
        LoopWatch const watch;
        game.Install();
        QVERIFY(game.WaitForPrimary("Play"));
        QVERIFY(times > 0);
        Longest = watch.Longest();
    });
}

void WindowResponseTest::WhileTheDigestOfALargeFileIsMade()
{
    Answers([this] {
        constexpr qint64 c_Size = qint64{2} << 30;
        constexpr int c_Rest = 1'000; // that is still to come
        QByteArray const c_Md5OfZeros = "A981130CF2B7E09F4686DC273CF7187E";
        QString const file = "Data/large.MPQ";
        QByteArray const placeholder = "for its place in the manifest";

        WindowGame game;
        game.AddFiles().Content.Add({file, placeholder});
        game.Publish().PutInstalled();
        game.SetSetting("host/pelmora_app/unfinished", true);
        game.Server.Serve(game.Content.ManifestPath(),
                          game.Content.ManifestBytes().replace(
                              SampleContent::Md5(placeholder).toLatin1(), c_Md5OfZeros));
        QString const path = game.Content.ServerPath(file);
        QByteArray const range = QByteArray("bytes ") + QByteArray::number(c_Size - c_Rest) + '-' +
                                 QByteArray::number(c_Size - 1) + '/' + QByteArray::number(c_Size);
        game.Server.Script("HEAD " + path).Always(Answer::ClaimingLength(c_Size));
        game.Server.Script("GET " + path)
            .Always(Answer::Status(206, QByteArray(c_Rest, '\0')).With("Content-Range", range));
        QVERIFY(QFile::remove(game.Path(file)));
        game.Put(file + ".part", {}); // with a hole that costs the disk nothing
        QVERIFY(QFile::resize(game.Path(file + ".part"), c_Size - c_Rest));
        game.Open();
        bool isVerified = false;
        connect(&game.Controller(), &Host::GameController::Changed, this, [&] {
            RunPhase const phase = game.State().Snapshot.Phase;
            isVerified = isVerified || phase == RunPhase::Verifying;
        });
        LoopWatch const watch;
        game.Controller().Start(Host::RunRequest::Type::Update);
        QVERIFY(game.WaitForPrimary("Play"));
        Longest = watch.Longest();
        QVERIFY(isVerified);
        QCOMPARE(QFileInfo(game.Path(file)).size(), c_Size);
    });
}

void WindowResponseTest::DuringASlowListingOfProcesses()
{
    Answers([this] {
        WindowGame game;
        game.AddFiles().Publish();
        QString const ps = game.Base + "ps";
        QVERIFY(WriteFile(ps, "#!/bin/sh\nsleep 0.4\necho listed >>\"$0.listed\"\n"));
        QVERIFY(SetMode(ps, 0755));
        ScopedVariable const path("PATH", game.Base.toUtf8() + ":" + qgetenv("PATH"));
        game.Open();
        LoopWatch const watch;
        game.Install();
        QVERIFY(game.WaitForPrimary("Play"));
        QVERIFY(QFile::exists(ps + ".listed"));
        Longest = watch.Longest();
    });
}

void WindowResponseTest::WhenItIsClosed()
{
    Answers([this] {
        WindowGame game;
        game.AddFiles().Publish();
        game.HoldContent("Data/base.MPQ", 1'000);
        game.Open();
        game.Install();
        QString const part = game.Path("Data/base.MPQ.part");
        QVERIFY(game.WaitUntil([&] { return QFileInfo(part).size() == 1'000; }));
        LoopWatch const watch;
        game.Window().close();
        QVERIFY(!game.Window().isVisible());
        QVERIFY(game.WaitUntil([&] { return game.IsFinished(); }));
        Longest = watch.Longest();
        QCOMPARE(QFileInfo(part).size(), 1'000);
        QVERIFY(game.IsMarkedUnfinished());
    });
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::WindowResponseTest)
#include "tst_WindowResponse.moc"
