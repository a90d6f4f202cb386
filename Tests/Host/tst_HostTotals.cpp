#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <numeric>

namespace Varnholt::TestSupport {

/// What a run tells of all that it has moved.
class HostTotalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Game.reset(); }

    void AnInstallationTotalsWhatItHasFetched();
    void AnUpdateOfACompleteGameTotalsNothing();
    void AVerificationTotalsWhatItHasCompared();
    void ACheckTotalsOnlyWhatItHasRead();
    void TheMeanRateIsOfTheTimeInWhichBytesMoved();

private:
    Host::RunTotals const& Totals() const { return Game->Result().Totals; }
    /// Of the build's files of the language but those.
    quint64 BytesBut(QStringList const& p_Files = {}) const;

    std::unique_ptr<SessionGame> Game;
};

void HostTotalsTest::init()
{
    Game = std::make_unique<SessionGame>();
    Game->AddFiles().Publish();
}

quint64 HostTotalsTest::BytesBut(QStringList const& p_Files) const
{
    auto const& files = Game->Content.Files;
    return std::accumulate(files.begin(), files.end(), quint64(0), [&](auto p_Sum, auto& p_File) {
        bool const counts = p_File.Locale != "frFR" && !p_Files.contains(p_File.Path);
        return p_Sum + (counts ? quint64(p_File.Bytes.size()) : 0);
    });
}

void HostTotalsTest::AnInstallationTotalsWhatItHasFetched()
{
    QVERIFY(Game->Open());
    QCOMPARE(Game->Install(), QString("done"));
    QCOMPARE(Totals().Files, 6u);
    QCOMPARE(Totals().Bytes, BytesBut());
    QVERIFY(Totals().Milliseconds > 0);
    QVERIFY(Totals().Rate >= Totals().Bytes * 1000 / quint64(Totals().Milliseconds));
}

void HostTotalsTest::AnUpdateOfACompleteGameTotalsNothing()
{
    Game->PutInstalled();
    QVERIFY(Game->Open());
    QCOMPARE(Game->Run(RequestType::Update), QString("done"));
    QCOMPARE(Totals().Files, 0u);
    QCOMPARE(Totals().Bytes, quint64(0));
    QCOMPARE(Totals().Rate, quint64(0));
    QCOMPARE(Game->Result().Transfers, 0u);
    QCOMPARE(Game->Requested(), QStringList());
    QVERIFY(!Game->IsMarkedUnfinished());
}

void HostTotalsTest::AVerificationTotalsWhatItHasCompared()
{
    Game->PutInstalled();
    Game->Put("Data/frFR/locale.MPQ", "of another language");
    QVERIFY(QFile::remove(Game->Path("Data/streamed 1.MPQ")));
    QVERIFY(Game->Open());
    QCOMPARE(Game->Run(RequestType::Verify), QString("files-wrong"));
    QCOMPARE(Totals().Files, 5u);
    QCOMPARE(Totals().Bytes, BytesBut({"Data/streamed 1.MPQ"}));
    QVERIFY(Totals().Rate >= Totals().Bytes * 1000 / quint64(Totals().Milliseconds));
}

void HostTotalsTest::ACheckTotalsOnlyWhatItHasRead()
{
    Game->PutInstalled();
    QVERIFY(Game->Open());
    QCOMPARE(Game->Run(RequestType::Check), QString("done"));
    QStringList const trusted{"Data/first build.MPQ", "Data/streamed 1.MPQ", "Data/streamed 2.MPQ"};
    QCOMPARE(Totals().Files, 3u);
    QCOMPARE(Totals().Bytes, BytesBut(trusted));
}

void HostTotalsTest::TheMeanRateIsOfTheTimeInWhichBytesMoved()
{
    constexpr int c_Pause = 400;
    constexpr int c_Turns = 60; // those in which the first bytes came, and the pause began
    Game->Options.RetryPauseMilliseconds = c_Pause;
    Game->Server.Script(Game->Content.VersionPath()).Then(Answer::Status(503));
    QVERIFY(Game->Open());
    QCOMPARE(Game->Install(), QString("done"));
    QVERIFY(Totals().Milliseconds >= c_Pause);
    quint64 const atMost = quint64(Totals().Milliseconds - c_Pause + c_Turns);
    QVERIFY(Totals().Rate >= Totals().Bytes * 1000 / atMost);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostTotalsTest)
#include "tst_HostTotals.moc"
