#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDateTime>
#include <QtTest>

namespace Varnholt::TestSupport {

class HostJsonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryCommandWritesWhatTheSchemaSays_data();
    void EveryCommandWritesWhatTheSchemaSays();
    void ARunIsToldFromItsPhasesToItsResult();
    void ProgressComesAtMostTwiceASecondWithinAPhase();
    void AnErrorEndsARunInsteadOfAResult();
    void ANoticeIsALineOfItsOwn();
    void OnlyRunsThatUseTheRealmListTellOfIt_data();
    void OnlyRunsThatUseTheRealmListTellOfIt();
    void TheLogStaysOutOfStandardOutput();
    void AUsageErrorLeavesStandardOutputEmpty();
};

void HostJsonTest::EveryCommandWritesWhatTheSchemaSays_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("last");
    QTest::addColumn<int>("status");
    auto const row = [](QString const& p_Arguments, char const* p_Last, int p_Status) {
        QTest::newRow(qPrintable(p_Arguments))
            << p_Arguments.split(QLatin1Char(' ')) << p_Last << p_Status;
    };
    row("info", "info", 0);
    row("status", "status", 0);
    row("locale", "locale", 0);
    row("config", "option", 0);
    row("config color", "option", 0);
    row("config module", "option", 0);
    row("config fly", "error", 2);
    row("config color pink", "error", 2);
    row("config color always", "", 0);
    row("pause", "error", 1);
    row("resume", "error", 1);
    row("check", "error", 3);
    row("verify", "error", 4);
    row("mirrors", "result", 0);
    row("update", "result", 0);
    row("repair", "result", 0);
    row("install game --yes", "result", 0);
    row("install other", "error", 7);
    row("locales", "result", 0);
    row("locale frFR", "result", 0);
    row("locale xxXX", "error", 2);
    row("play", "error", 1);
    row("uninstall", "result", 0);
    row("uninstall --delete-files", "error", 2);
    row("uninstall --delete-files --yes", "result", 0);
    row("--module nothing status", "error", 9);
}

void HostJsonTest::EveryCommandWritesWhatTheSchemaSays()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, last);
    QFETCH(int, status);
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged");
    game.SetSetting("options/color", "never");
    Outcome const outcome = HostProcess(game, QStringList("--json") + arguments).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, status);
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Foreign, QStringList());
    JsonSchema const schema = JsonSchema::Documented("host-json");
    for (QJsonObject const& line : report.Lines)
        QVERIFY2(schema.Fault(line).isEmpty(), qPrintable(schema.Fault(line)));
    QCOMPARE(report.Last()["type"].toString(), last);
    QCOMPARE(report.Of("error").size(), std::size_t(last == "error" ? 1 : 0));
    QCOMPARE(report.Of("result").size(), std::size_t(last == "result" ? 1 : 0));
    if (last == "error")
        QCOMPARE(report.Last()["exitStatus"].toInt(), status);
}

void HostJsonTest::ARunIsToldFromItsPhasesToItsResult()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome = HostProcess(game, {"--json", "install", game.Folder}).Finish();
    JsonReport const report(outcome.Out);
    QStringList const phases = report.Phases();
    QCOMPARE(phases.first(), QString("connecting"));
    for (char const* const phase : {"downloading-base", "downloading-streamed", "finished"})
        QVERIFY2(phases.contains(phase), qPrintable(phases.join(' ')));
    QVERIFY(phases.indexOf("downloading-base") < phases.indexOf("downloading-streamed"));
    QCOMPARE(phases.last(), QString("finished"));
    QJsonObject const result = report.Last();
    QCOMPARE(result["game"].toString(), QString("Mists of Pandaria"));
    QCOMPARE(result["build"].toString(), QString("build_1"));
    QCOMPARE(result["buildName"].toString(), QString("Sample build"));
    QCOMPARE(result["folder"].toString(), game.Folder);
    QCOMPARE(result["locale"].toString(), QString("enUS"));
    QCOMPARE(result["transfers"].toInt(), 6);
}

void HostJsonTest::ProgressComesAtMostTwiceASecondWithinAPhase()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Server.Script(game.Content.ServerPath("Data/base.MPQ"))
        .Always(Answer::Drip(300, 10)); // two seconds at least
    Outcome const outcome = HostProcess(game, {"--json", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Status, 0);
    JsonReport const report(outcome.Out);
    QString phase;
    QDateTime time;
    double bytes = 0;
    int within = 0;
    for (QJsonObject const& line : report.Of("progress")) {
        QDateTime const now = QDateTime::fromString(line["time"].toString(), Qt::ISODateWithMs);
        QVERIFY(now.isValid());
        QCOMPARE(now.timeSpec(), Qt::UTC);
        if (line["phase"].toString() == phase) {
            ++within;
            QVERIFY2(time.msecsTo(now) >= 500, qPrintable(line["time"].toString()));
            QVERIFY(line["bytes"].toDouble() >= bytes);
        }
        QVERIFY(line["bytes"].toDouble() <= line["total"].toDouble());
        phase = line["phase"].toString();
        time = now;
        bytes = line["bytes"].toDouble();
    }
    QVERIFY2(within >= 2, qPrintable(outcome.Out));
}

void HostJsonTest::AnErrorEndsARunInsteadOfAResult()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Server.Script(game.Content.ManifestPath()).Always(Answer::Status(503));
    Outcome const outcome = HostProcess(game, {"--json", "install", game.Folder}).Finish();
    JsonReport const report(outcome.Out);
    QCOMPARE(outcome.Status, 5);
    QCOMPARE(report.Phases().last(), QString("failed"));
    QCOMPARE(report.Last()["error"].toString(), QString("server-refusal"));
    QCOMPARE(report.Last()["exitStatus"].toInt(), 5);
    QCOMPARE(report.Last()["subject"].toString(), game.Server.Url(game.Content.ManifestPath()));
    QVERIFY(report.Last()["text"].toString().contains("HTTP status 503"));
    QVERIFY(!report.Last()["remedy"].toString().isEmpty());
    QVERIFY(report.Of("result").empty());
}

void HostJsonTest::ANoticeIsALineOfItsOwn()
{
    HostGame game;
    game.AddFiles().Publish();
    game.Server.Remove("/cdns.info");
    Outcome const outcome = HostProcess(game, {"--json", "install", game.Folder}).Finish();
    QCOMPARE(outcome.Status, 0);
    auto const notices = JsonReport(outcome.Out).Of("notice");
    QCOMPARE(notices.size(), std::size_t(1));
    QVERIFY(notices[0]["text"].toString().contains("cdns.info"));
    QCOMPARE(notices[0]["kind"].toString(), QString("mirrors-unknown"));
    QCOMPARE(notices[0]["severity"].toString(), QString("warning"));
    QVERIFY(!notices[0].contains("remedy"));
}

void HostJsonTest::OnlyRunsThatUseTheRealmListTellOfIt_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("notices");
    QTest::newRow("update") << "update" << 1;
    QTest::newRow("repair") << "repair" << 1;
    QTest::newRow("check") << "check" << 0;
    QTest::newRow("verify") << "verify" << 0;
    QTest::newRow("mirrors") << "mirrors" << 0;
    QTest::newRow("uninstall") << "uninstall --delete-files --yes" << 0;
}

void HostJsonTest::OnlyRunsThatUseTheRealmListTellOfIt()
{
    QFETCH(QString, command);
    QFETCH(int, notices);
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Server.Remove(game.Content.RealmListPath());
    Outcome const outcome =
        HostProcess(game, QStringList("--json") + command.split(QLatin1Char(' '))).Finish();
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(JsonReport(outcome.Out).Texts("notice", "text").filter("realm list").size(), notices);
}

void HostJsonTest::TheLogStaysOutOfStandardOutput()
{
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome =
        HostProcess(game, {"--json", "--verbose", "install", game.Folder}).Finish();
    QCOMPARE(JsonReport(outcome.Out).Foreign, QStringList());
    QVERIFY2(outcome.Err.contains("[varnholt."), qPrintable(outcome.Err));
}

void HostJsonTest::AUsageErrorLeavesStandardOutputEmpty()
{
    HostGame const game;
    Outcome const outcome = HostProcess(game, {"--json", "fly"}).Finish();
    QCOMPARE(outcome.Out, QString());
    QVERIFY(IsOneSentence(outcome.Err));
    QCOMPARE(outcome.Status, 2);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostJsonTest)
#include "tst_HostJson.moc"
