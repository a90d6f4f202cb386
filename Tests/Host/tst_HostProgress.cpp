#include "Host/Core/Session/ControlLine.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Host::RunPhase;
using Host::RunSnapshot;

namespace {

/// What the figures of a run must never do; empty when they do not.
QString FaultOf(std::vector<RunSnapshot> const& p_Snapshots)
{
    RunSnapshot before;
    for (RunSnapshot const& snapshot : p_Snapshots) {
        QString const phase = PhaseText(snapshot.Phase);
        if (snapshot.BytesDone > snapshot.BytesTotal)
            return phase + QStringLiteral(": more bytes than there are");
        if (snapshot.FileNumber > snapshot.FileCount)
            return phase + QStringLiteral(": more files than there are");
        bool const sameFigures =
            snapshot.Phase == before.Phase && snapshot.FileCount == before.FileCount;
        if (sameFigures && snapshot.FileNumber < before.FileNumber)
            return phase + QStringLiteral(": the number of the file fell");
        if (snapshot.Phase == before.Phase && snapshot.BytesDone < before.BytesDone)
            return phase + QStringLiteral(": the bytes fell");
        before = snapshot;
    }
    return {};
}

/// True when the phases come in this order; phases of the order may be left out. A busy machine's
/// files may be seen being verified, whatever the order.
bool AreInOrder(std::vector<RunPhase> const& p_Phases, std::vector<RunPhase> const& p_Order)
{
    auto next = p_Order.begin();
    for (RunPhase const phase : p_Phases) {
        if (phase == RunPhase::Verifying)
            continue;
        next = std::find(next, p_Order.end(), phase);
        if (next == p_Order.end())
            return false;
    }
    return true;
}

} // namespace

/// What a run shows of itself.
class HostProgressTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ThePhasesComeInOrderAndTheLastTellsTheEnd();
    void TheFiguresOfAPhaseNeverFall();
    void WhatLiesThereOfAFileCountsAsDone();
    void ADownloadIsShownWithItsFileItsMirrorAndItsRate();
    void AVerificationIsShownInBytes();
    void AComparisonIsShownInBytes_data();
    void AComparisonIsShownInBytes();
    void AFileThatHasArrivedIsShownWhileItIsVerified();
};

void HostProgressTest::ThePhasesComeInOrderAndTheLastTellsTheEnd()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    QString const streamed = game.Content.ServerPath("Data/streamed 1.MPQ");
    for (QString const& path : {base, streamed})
        game.Server.Script(path).Then(Answer().Held(), 2); // its size, and itself
    game.Server.Script("/pelmora_app/version.json").Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPhase(RunPhase::Connecting));
    game.Server.OpenGate("/pelmora_app/version.json");
    QVERIFY(game.WaitForPhase(RunPhase::AskingSizes));
    game.Server.OpenGate(base);
    QVERIFY(game.WaitForPhase(RunPhase::DownloadingBase));
    game.Server.OpenGate(base);
    QVERIFY(game.WaitForPhase(RunPhase::AskingSizes));
    game.Server.OpenGate(streamed);
    QVERIFY(game.WaitForPhase(RunPhase::DownloadingStreamed));
    game.Server.OpenGate(streamed);
    QCOMPARE(game.End(), QString("done"));
    QVERIFY(AreInOrder(game.Phases(), {RunPhase::Connecting, RunPhase::Comparing,
                                       RunPhase::WaitingForHost, RunPhase::AskingSizes,
                                       RunPhase::DownloadingBase, RunPhase::ComparingStreamed,
                                       RunPhase::AskingSizes, RunPhase::DownloadingStreamed,
                                       RunPhase::ComparingStreamed, RunPhase::Finished}));
    QCOMPARE(game.Phases().back(), RunPhase::Finished);
}

void HostProgressTest::TheFiguresOfAPhaseNeverFall()
{
    SessionGame game;
    game.AddFiles();
    for (int i = 0; i < 20; ++i)
        game.Content.Add({QString("Data/more %1").arg(i), SampleContent::Bytes(20000, i + 10)});
    game.Publish();
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    QString const readme = game.Content.ServerPath("readme.txt");
    // A cut that is resumed, and a file that comes wrong at first.
    game.Server.Script("GET " + base).Then(Answer::Truncated(40000));
    game.Server.Script("GET " + base).Then(Answer::SilentAfter(5000));
    game.Server.Script("GET " + readme).Then(Answer().Body("damaged"));
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForBytes(45000));
    game.Server.OpenGate(base);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(FaultOf(game.Snapshots), QString());
}

void HostProgressTest::WhatLiesThereOfAFileCountsAsDone()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    game.Put("Data/base.MPQ.part", game.Content.Files[0].Bytes.left(30000));
    game.Server.Script("GET " + base).Then(Answer::SilentAfter(5000));
    QVERIFY(game.Open());
    game.Start(RequestType::Update);
    QVERIFY(game.WaitForBytes(35000));
    QCOMPARE(game.Snapshots.back().BytesTotal, quint64(60000));
    game.Server.OpenGate(base);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.WasResumedAt("Data/base.MPQ", 30000));
    // What lay there has not come from anywhere.
    for (RunSnapshot const& snapshot : game.Snapshots)
        QVERIFY(snapshot.BytesReceived <= 30000);
    QCOMPARE(game.Result().Totals.Files, 1u);
    QCOMPARE(game.Result().Totals.Bytes, quint64(30000));
    QCOMPARE(FaultOf(game.Snapshots), QString());
}

void HostProgressTest::ADownloadIsShownWithItsFileItsMirrorAndItsRate()
{
    SessionGame game;
    ScriptedServer mirror;
    game.AddFiles();
    game.Content.Publish(game.Server, {&mirror});
    QString const path = game.Content.ServerPath("Data/base.MPQ");
    mirror.Script("GET " + path).Always(Answer::Drip(600, 10)); // a second at least
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitUntil([&] { return !game.Snapshots.empty() && game.Snapshots.back().Rate; }));
    RunSnapshot const snapshot = game.Snapshots.back();
    QCOMPARE(snapshot.Phase, RunPhase::DownloadingBase);
    QCOMPARE(snapshot.File, QString("Data/base.MPQ"));
    QCOMPARE(snapshot.Mirror, mirror.Host());
    QCOMPARE(snapshot.FileNumber, 1u);
    QCOMPARE(snapshot.FileCount, 4u);
    QCOMPARE(snapshot.BytesTotal, quint64(60000 + 30000 + 2000 + 7));
    QVERIFY(snapshot.Remaining >= 0);
}

void HostProgressTest::AVerificationIsShownInBytes()
{
    constexpr qint64 c_Bytes = qint64{1} << 30; // a second of hashing, and no room

    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    qint64 others = 0;
    for (SampleFile const& file : game.Content.Files)
        others += QFileInfo(game.Path(file.Path)).size();
    others -= QFileInfo(game.Path("readme.txt")).size();
    QVERIFY(QFile::resize(game.Path("readme.txt"), c_Bytes));
    QVERIFY(game.Open());
    game.Start(RequestType::Verify);
    auto const isInTheMidst = [&] {
        RunSnapshot const& shown = game.Snapshots.back();
        return shown.File == "readme.txt" && shown.BytesDone > c_Bytes / 4 && shown.Rate > 0 &&
               shown.Remaining >= 0;
    };
    QVERIFY(game.WaitUntil([&] { return !game.Snapshots.empty() && isInTheMidst(); }));
    QCOMPARE(game.Snapshots.back().Phase, RunPhase::Verifying);
    QCOMPARE(game.Snapshots.back().BytesTotal, quint64(c_Bytes + others));
    QCOMPARE(game.End(), QString("files-wrong"));
    QCOMPARE(FaultOf(game.Snapshots), QString());
    // The bytes are there when the file is, and not before.
    auto const count = [&](auto const& p_Is) {
        return std::count_if(game.Snapshots.begin(), game.Snapshots.end(), p_Is);
    };
    quint64 most = 0;
    for (RunSnapshot const& shown : game.Snapshots)
        if (shown.File == "readme.txt")
            most = shown.BytesDone;
    auto const within = count([&](RunSnapshot const& p_Shown) {
        return p_Shown.File == "readme.txt" && p_Shown.BytesDone < most;
    });
    auto const behind = count([&](RunSnapshot const& p_Shown) {
        return p_Shown.File == "readme.txt" && p_Shown.BytesDone == most;
    });
    QVERIFY2(behind * 3 < within, qPrintable(QString("%1, %2").arg(behind).arg(within)));
}

void HostProgressTest::AComparisonIsShownInBytes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("phase");
    QTest::addColumn<int>("others");
    QTest::newRow("base") << "readme.txt" << int(RunPhase::Comparing) << 60000 + 30000 + 2000;
    QTest::newRow("streamed") << "Data/streamed 1.MPQ" << int(RunPhase::ComparingStreamed) << 8000;
}

void HostProgressTest::AComparisonIsShownInBytes()
{
    constexpr qint64 c_Bytes = qint64{1} << 30; // a second of hashing, and no room

    QFETCH(QString, file);
    QFETCH(int, phase);
    QFETCH(int, others);
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::resize(game.Path(file), c_Bytes));
    QVERIFY(game.Open());
    game.Start(RequestType::Repair);
    QVERIFY(game.WaitUntil([&] {
        return !game.Snapshots.empty() && int(game.Snapshots.back().Phase) == phase &&
               game.Snapshots.back().BytesDone > c_Bytes / 4;
    }));
    RunSnapshot const shown = game.Snapshots.back();
    QCOMPARE(shown.File, file);
    QCOMPARE(shown.BytesTotal, quint64(c_Bytes + others));
    QVERIFY(shown.BytesDone < shown.BytesTotal);
    QVERIFY(shown.Rate > 0 && shown.Remaining >= 0);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(FaultOf(game.Snapshots), QString());
}

void HostProgressTest::AFileThatHasArrivedIsShownWhileItIsVerified()
{
    constexpr int c_Bytes = 256 * 1024 * 1024; // some tenths of a second of hashing

    SessionGame game;
    game.AddFiles();
    game.Content.Add({"Data/long.MPQ", QByteArray(c_Bytes, 0)});
    game.Publish();
    game.Put("ToDownload.db", "");
    game.Put("Data/long.MPQ.part", "");
    QVERIFY(QFile::resize(game.Path("Data/long.MPQ.part"), c_Bytes - 1000)); // no room
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    auto const shown =
        std::find_if(game.Snapshots.begin(), game.Snapshots.end(),
                     [](auto const& p_Shown) { return p_Shown.Phase == RunPhase::Verifying; });
    QVERIFY(shown != game.Snapshots.end());
    QCOMPARE(shown->File, QString("Data/long.MPQ"));
    QCOMPARE(FaultOf(game.Snapshots), QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostProgressTest)
#include "tst_HostProgress.moc"
