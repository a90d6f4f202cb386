#include "Host/Core/Failure.hpp"
#include "Host/Core/FileFinding.hpp"
#include "Host/Core/RunPhase.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/JsonSchema.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString Document(char const* p_Name)
{
    return QStringLiteral(VARNHOLT_DOCUMENTS "/") + QLatin1String(p_Name);
}

JsonSchema Schema()
{
    return JsonSchema::FromFile(Document("host-json.schema.json"));
}

/// The values that the schema allows for a key of a type.
QStringList Allowed(QString const& p_Type, QString const& p_Key)
{
    for (QJsonValue const& schema : Schema().Words()["oneOf"].toArray())
        if (schema["title"].toString() == p_Type)
            return schema["properties"][p_Key]["enum"].toVariant().toStringList();
    return {};
}

/// First columns of the table of the document whose heading begins so; the others behind a "|".
QStringList Table(QString const& p_Heading)
{
    QStringList rows;
    bool within = false;
    for (QString const& line :
         QString::fromUtf8(ReadFile(Document("host-json.md"))).split(QLatin1Char('\n'))) {
        if (line.startsWith(QStringLiteral("| %1 |").arg(p_Heading)))
            within = true;
        else if (!line.startsWith(QLatin1String("| ")))
            within = false;
        else if (within && line.startsWith(QLatin1String("| `")))
            rows += line;
    }
    return rows;
}

/// A name of an enumeration's value behind the last one stands for none.
template <typename Name>
QStringList NamesUntil(QString const& p_None, int p_First, Name const& p_Name)
{
    QStringList names;
    for (int i = p_First; p_Name(i) != p_None; ++i)
        names += p_Name(i);
    return names;
}

QStringList Phases()
{
    auto const name = [](int p_Index) { return PhaseName(static_cast<Host::RunPhase>(p_Index)); };
    return QStringList(name(0)) + NamesUntil(name(0), 1, name);
}

std::vector<Host::Failure> Failures()
{
    std::vector<Host::Failure> failures(1);
    for (int i = 1;; ++i) {
        Host::Failure const failure{static_cast<Host::FailureKind>(i), {}, {}};
        if (failure.Identifier() == failures.front().Identifier())
            return failures;
        failures.push_back(failure);
    }
}

} // namespace

class HostJsonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheSchemaNamesThePhasesOfTheProgram();
    void TheSchemaNamesTheErrorsOfTheProgram();
    void TheSchemaNamesTheCausesOfTheProgram();
    void TheDocumentNamesPhasesAndErrorsWithTheirStatus();
    void TheExamplesOfTheDocumentFitTheSchema();
    void TheSchemaRefusesWhatItDoesNotSay_data();
    void TheSchemaRefusesWhatItDoesNotSay();

    void EveryCommandWritesWhatTheSchemaSays_data();
    void EveryCommandWritesWhatTheSchemaSays();
    void ARunIsToldFromItsPhasesToItsResult();
    void ProgressComesAtMostTwiceASecondWithinAPhase();
    void AnErrorEndsARunInsteadOfAResult();
    void ANoticeIsALineOfItsOwn();
    void FindingsStandBeforeTheError();
    void TheLogStaysOutOfStandardOutput();
    void AUsageErrorLeavesStandardOutputEmpty();
};

void HostJsonTest::TheSchemaNamesThePhasesOfTheProgram()
{
    QVERIFY(Phases().size() > 10);
    QCOMPARE(Allowed("progress", "phase"), Phases());
}

void HostJsonTest::TheSchemaNamesTheErrorsOfTheProgram()
{
    QStringList identifiers;
    QStringList statuses;
    for (Host::Failure const& failure : Failures()) {
        identifiers += failure.Identifier();
        statuses += QString::number(failure.ExitStatus());
    }
    QStringList allowed = Allowed("error", "exitStatus");
    for (QStringList* const list : {&statuses, &allowed})
        list->sort();
    statuses.removeDuplicates();
    QVERIFY(identifiers.contains("interrupted"));
    QCOMPARE(Allowed("error", "error"), identifiers);
    QCOMPARE(allowed, statuses);
}

void HostJsonTest::TheSchemaNamesTheCausesOfTheProgram()
{
    auto const name = [](int p_Index) {
        Host::FileFinding finding;
        finding.Why = static_cast<Host::FileFinding::Cause>(p_Index);
        return finding.CauseText();
    };
    QCOMPARE(Allowed("finding", "cause"), NamesUntil(QString(), 0, name));
}

void HostJsonTest::TheDocumentNamesPhasesAndErrorsWithTheirStatus()
{
    QStringList errors;
    for (Host::Failure const& failure : Failures())
        errors +=
            QStringLiteral("| `%1` | %2 |").arg(failure.Identifier()).arg(failure.ExitStatus());
    QStringList documented;
    for (QString const& row : Table("Error"))
        documented += row.section(QLatin1Char('|'), 0, 2) + QLatin1Char('|');
    QCOMPARE(documented, errors);

    QStringList phases;
    for (QString const& row : Table("Phase"))
        phases += row.section(QLatin1Char('`'), 1, 1);
    QCOMPARE(phases, Phases());
}

void HostJsonTest::TheExamplesOfTheDocumentFitTheSchema()
{
    QString const text = QString::fromUtf8(ReadFile(Document("host-json.md")));
    QStringList types;
    for (QString const& line : text.split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1Char('{')))
            continue;
        QJsonObject const example = QJsonDocument::fromJson(line.toUtf8()).object();
        QCOMPARE(Schema().Fault(example), QString());
        types += example["type"].toString();
    }
    QStringList known;
    for (QJsonValue const& schema : Schema().Words()["oneOf"].toArray())
        known += schema["title"].toString();
    QCOMPARE(types, known);
}

void HostJsonTest::TheSchemaRefusesWhatItDoesNotSay_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("a missing key") << "bytes" << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("an unknown key") << "colour" << QJsonValue("red");
    QTest::newRow("an unknown phase") << "phase" << QJsonValue("flying");
    QTest::newRow("a text for a figure") << "bytes" << QJsonValue("1");
    QTest::newRow("a negative figure") << "eta" << QJsonValue(-1);
    QTest::newRow("a part of a byte") << "rate" << QJsonValue(1.5);
    QTest::newRow("an unknown type") << "type" << QJsonValue("news");
    QTest::newRow("another type") << "type" << QJsonValue("notice");
}

void HostJsonTest::TheSchemaRefusesWhatItDoesNotSay()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QJsonObject line{{"type", "progress"}, {"time", "now"}, {"phase", "idle"}, {"fileNumber", 0},
                     {"fileCount", 0},     {"bytes", 0},    {"total", 0},      {"rate", 0}};
    QCOMPARE(Schema().Fault(line), QString());
    line[key] = value;
    if (value.isUndefined())
        line.remove(key);
    QVERIFY(!Schema().Fault(line).isEmpty());
    QVERIFY(!JsonSchema({{"pattern", "a*"}}).Fault(line).isEmpty());
}

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
    JsonSchema const schema = Schema();
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
    QCOMPARE(result["build"].toString(), QString("Sample build"));
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
    QStringList const notices = JsonReport(outcome.Out).Texts("notice", "text");
    QCOMPARE(notices.size(), 1);
    QVERIFY2(notices[0].contains("cdns.info"), qPrintable(notices[0]));
}

void HostJsonTest::FindingsStandBeforeTheError()
{
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("readme.txt", "damaged");
    Outcome const outcome = HostProcess(game, {"--json", "check"}).Finish();
    JsonReport const report(outcome.Out);
    QCOMPARE(outcome.Status, 3);
    QCOMPARE(report.Texts("finding", "file"), QStringList("readme.txt"));
    QCOMPARE(report.Texts("finding", "cause"), QStringList("different"));
    QCOMPARE(report.Texts("finding", "bytes"), QStringList("7"));
    QCOMPARE(report.Last()["error"].toString(), QString("update-available"));
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

QTEST_GUILESS_MAIN(Varnholt::TestSupport::HostJsonTest)
#include "tst_HostJson.moc"
