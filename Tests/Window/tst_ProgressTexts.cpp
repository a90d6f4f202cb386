#include "Host/Window/Pages/ProgressTexts.hpp"
#include "Host/Window/Pages/RateHistory.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/PageStates.hpp"

#include <QLocale>

namespace Varnholt::TestSupport {

using Host::ProgressTexts;
using Host::RunPhase;
using Host::RunSnapshot;

class ProgressTextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ADownloadIsToldInNumbersOfTheLanguage();
    void ATimeLeftThatIsNotKnownIsToldSo();
    void VerifyingTellsItsOwnRate();
    void AFileCountDoesWhereBytesAreNotCounted();
    void APauseIsToldBeforeAndWhileItHolds();
    void ARetryTellsTheAttemptAndWhen();
    void DurationsAreRounded_data();
    void DurationsAreRounded();
    void RatesOfTwoMinutesAreKept();

private:
    static RunSnapshot Download();
};

RunSnapshot ProgressTextsTest::Download()
{
    return PageStates::Working(Host::RunRequest::Type::Update, RunPhase::DownloadingBase).Snapshot;
}

void ProgressTextsTest::ADownloadIsToldInNumbersOfTheLanguage()
{
    ProgressTexts const texts = ProgressTexts::Of(Download(), 240, false);
    QCOMPARE(texts.Phase, QString("Downloading base files"));
    QCOMPARE(texts.Permille, 8);
    QCOMPARE(texts.Amount, QString::fromUtf8("941.9 MiB of 102.3 GiB · 117.7 MiB/s"));
    QCOMPARE(texts.Count, QString("File 10,234 of 12,345"));
    QVERIFY2(texts.Left.startsWith("4 minute"), qPrintable(texts.Left));
    QLocale const before;
    QLocale::setDefault(QLocale(QLocale::Italian));
    ProgressTexts const italian = ProgressTexts::Of(Download(), 240, false);
    QLocale::setDefault(before);
    QVERIFY2(italian.Amount.startsWith("941,9 MiB"), qPrintable(italian.Amount));
    QVERIFY2(italian.Count.contains("10.234"), qPrintable(italian.Count));
}

void ProgressTextsTest::ATimeLeftThatIsNotKnownIsToldSo()
{
    QCOMPARE(ProgressTexts::Of(Download(), std::nullopt, false).Left,
             QString("time left not known yet"));
}

void ProgressTextsTest::VerifyingTellsItsOwnRate()
{
    RunSnapshot snapshot = Download();
    snapshot.Phase = RunPhase::Verifying;
    QVERIFY(ProgressTexts::Of(snapshot, 10, false).Amount.endsWith("checks 117.7 MiB/s"));
}

void ProgressTextsTest::AFileCountDoesWhereBytesAreNotCounted()
{
    RunSnapshot snapshot = Download();
    snapshot.BytesDone = snapshot.BytesTotal = snapshot.Rate = 0;
    snapshot.Phase = RunPhase::AskingSizes;
    ProgressTexts const texts = ProgressTexts::Of(snapshot, std::nullopt, false);
    QCOMPARE(texts.Permille, 828);
    QCOMPARE(texts.Count, QString("File 10,234 of 12,345"));
    QCOMPARE(texts.Amount + texts.Left, QString());
}

void ProgressTextsTest::APauseIsToldBeforeAndWhileItHolds()
{
    RunSnapshot snapshot = Download();
    QCOMPARE(ProgressTexts::Of(snapshot, 10, true).Phase, QString::fromUtf8("Pausing…"));
    snapshot.IsHeld = true;
    QCOMPARE(ProgressTexts::Of(snapshot, 10, true).Phase, QString("Paused"));
    QCOMPARE(ProgressTexts::Of(snapshot, 10, true).Left, QString());
}

void ProgressTextsTest::ARetryTellsTheAttemptAndWhen()
{
    Host::ServerWait wait;
    wait.Server = "content.example:80";
    wait.Silent = 12;
    QCOMPARE(ProgressTexts::WaitText(wait).indexOf("Attempt"), -1);
    wait.Attempt = 3;
    wait.Attempts = 10;
    wait.NextAttempt = 8;
    QString const text = ProgressTexts::WaitText(wait);
    QVERIFY2(text.contains("content.example:80") && text.contains("Attempt 3 of 10 in 8 second"),
             qPrintable(text));
    wait.NextAttempt = 0;
    QVERIFY(ProgressTexts::WaitText(wait).endsWith("Attempt 3 of 10 is under way."));
}

void ProgressTextsTest::DurationsAreRounded_data()
{
    QTest::addColumn<int>("Seconds");
    QTest::addColumn<QString>("Text");
    AddRow("few seconds", 3, QString("5 second"));
    AddRow("most of a minute", 54, QString("55 second"));
    AddRow("a minute", 58, QString("1 minute"));
    AddRow("minutes", 61, QString("2 minute"));
    AddRow("most of an hour", 59 * 60, QString("59 minute"));
    AddRow("an hour", 59 * 60 + 30, QString("1 h 0 min"));
    AddRow("hours", 2 * 3600 + 62, QString("2 h 5 min"));
}

void ProgressTextsTest::DurationsAreRounded()
{
    QFETCH(int, Seconds);
    QFETCH(QString, Text);
    QString const told = ProgressTexts::Duration(Seconds);
    QVERIFY2(told.startsWith(Text), qPrintable(told));
}

void ProgressTextsTest::RatesOfTwoMinutesAreKept()
{
    Host::RateHistory rates;
    for (int second = 0; second <= 200; ++second)
        rates.Add(second * 1'000, static_cast<quint64>(second == 10 ? 1'000 : second));
    QCOMPARE(rates.All().front().Time, 80'000);
    QCOMPARE(rates.All().back().Time, 200'000);
    QCOMPARE(rates.Highest(), 200u);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ProgressTextsTest)
#include "tst_ProgressTexts.moc"
