#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Jobs/RunPhase.hpp"
#include "Host/Core/Session/ControlLine.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString Document()
{
    return QString::fromUtf8(ReadFile(QStringLiteral(VARNHOLT_DOCUMENTS "/host-json.md")));
}

/// The values that the schema allows for a key of a type.
QStringList Allowed(QString const& p_Type, QString const& p_Key)
{
    auto const words = JsonSchema::Documented("host-json").Words();
    QJsonValue found;
    for (QJsonValue const& schema : words["oneOf"].toArray())
        if (schema["title"].toString() == p_Type)
            found = schema["properties"][p_Key];
    if (QString const defined = found["$ref"].toString(); !defined.isEmpty())
        found = words["definitions"].toObject()[defined.section(QLatin1Char('/'), -1)];
    return found["enum"].toVariant().toStringList();
}

/// First columns of the table of the document whose heading begins so; the others behind a "|".
QStringList Table(QString const& p_Heading)
{
    QStringList rows;
    bool within = false;
    for (QString const& line : Document().split(QLatin1Char('\n'))) {
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

/// One of each kind.
template <typename Told, typename Kind>
std::vector<Told> Each()
{
    std::vector<Told> all{Told{static_cast<Kind>(0), {}, {}}};
    for (int i = 1;; ++i) {
        Told const told{static_cast<Kind>(i), {}, {}};
        if (told.Identifier() == all.front().Identifier())
            return all;
        all.push_back(told);
    }
}

std::vector<Host::Failure> Failures()
{
    return Each<Host::Failure, Host::FailureKind>();
}

std::vector<Host::Notice> Notices()
{
    return Each<Host::Notice, Host::NoticeKind>();
}

} // namespace

/// That the document, the schema and the program say the same.
class HostJsonFormTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheSchemaNamesThePhasesOfTheProgram();
    void TheSchemaNamesTheErrorsOfTheProgram();
    void TheSchemaNamesTheCausesOfTheProgram();
    void TheSchemaNamesTheNoticesOfTheProgram();
    void SchemaAndDocumentNameTheOptionsOfTheProgram();
    void ProgressTellsOfServersAndWaiting();
    void ProgressLeavesOutWhatIsNotKnown();
    void TheDocumentNamesThePhases();
    void TheExamplesOfTheDocumentFitTheSchema();
    void TheSchemaRefusesWhatItDoesNotSay_data();
    void TheSchemaRefusesWhatItDoesNotSay();
};

void HostJsonFormTest::TheSchemaNamesThePhasesOfTheProgram()
{
    QVERIFY(Phases().size() > 10);
    QCOMPARE(Allowed("progress", "phase"), Phases());
}

void HostJsonFormTest::TheSchemaNamesTheErrorsOfTheProgram()
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
    QCOMPARE(Allowed("finding", "error"), identifiers);
    QCOMPARE(allowed, statuses);
}

void HostJsonFormTest::TheSchemaNamesTheCausesOfTheProgram()
{
    auto const name = [](int p_Index) {
        Host::FileFinding finding;
        finding.Why = static_cast<Host::FileFinding::Cause>(p_Index);
        return finding.CauseText();
    };
    QCOMPARE(Allowed("finding", "cause"), NamesUntil(QString(), 0, name));
}

void HostJsonFormTest::TheSchemaNamesTheNoticesOfTheProgram()
{
    QStringList identifiers;
    for (Host::Notice const& notice : Notices()) {
        identifiers += notice.Identifier();
        QVERIFY(Allowed("notice", "severity").contains(notice.SeverityName()));
    }
    QVERIFY(identifiers.contains("stopping"));
    QCOMPARE(Allowed("notice", "kind"), identifiers);
}

void HostJsonFormTest::SchemaAndDocumentNameTheOptionsOfTheProgram()
{
    QStringList const keys = Host::ConfigCommand::Keys();
    QVERIFY(keys.contains("limit-rate"));
    QCOMPARE(Allowed("option", "key"), keys);
    QString const row = Table("Key").filter("| `key` |").value(0).section(QLatin1Char('|'), 2, 2);
    QCOMPARE(row.trimmed().remove(QLatin1Char('`')).replace(" or ", ", ").split(", "), keys);
}

namespace {

/// As the line that it becomes.
QJsonObject Line(Host::RunSnapshot const& p_Snapshot)
{
    QJsonObject line = Host::ControlLine::ObjectOf(p_Snapshot);
    line["type"] = "progress";
    line["time"] = "now";
    return line;
}

} // namespace

void HostJsonFormTest::ProgressTellsOfServersAndWaiting()
{
    constexpr quint64 c_Large = 5'000'000'000;

    Host::RunSnapshot snapshot;
    snapshot.Phase = Host::RunPhase::DownloadingBase;
    snapshot.BytesReceived = c_Large;
    snapshot.Servers = {{"a.example", c_Large}, {"b.example:81", 0}};
    snapshot.Wait = Host::ServerWait{"b.example:81", "connection refused", 12, 8, 2, 3};
    QJsonObject const line = Line(snapshot);
    QCOMPARE(JsonSchema::Documented("host-json").Fault(line), QString());
    QCOMPARE(line["received"].toDouble(), double(c_Large));
    QCOMPARE(line["servers"].toArray(),
             (QJsonArray{QJsonObject{{"server", "a.example"}, {"rate", double(c_Large)}},
                         QJsonObject{{"server", "b.example:81"}, {"rate", 0}}}));
    QCOMPARE(line["wait"].toObject(), (QJsonObject{{"server", "b.example:81"},
                                                   {"cause", "connection refused"},
                                                   {"silent", 12},
                                                   {"nextAttempt", 8},
                                                   {"attempt", 2},
                                                   {"attempts", 3}}));
}

void HostJsonFormTest::ProgressLeavesOutWhatIsNotKnown()
{
    QJsonObject const line = Line(Host::RunSnapshot());
    QCOMPARE(JsonSchema::Documented("host-json").Fault(line), QString());
    for (char const* const key : {"servers", "wait", "eta", "file", "mirror"})
        QVERIFY2(!line.contains(QLatin1String(key)), key);
}

void HostJsonFormTest::TheDocumentNamesThePhases()
{
    QStringList phases;
    for (QString const& row : Table("Phase"))
        phases += row.section(QLatin1Char('`'), 1, 1);
    QCOMPARE(phases, Phases());
}

void HostJsonFormTest::TheExamplesOfTheDocumentFitTheSchema()
{
    QString const text = Document();
    QStringList types;
    for (QString const& line : text.split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1Char('{')))
            continue;
        QJsonObject const example = QJsonDocument::fromJson(line.toUtf8()).object();
        QCOMPARE(JsonSchema::Documented("host-json").Fault(example), QString());
        types += example["type"].toString();
    }
    QStringList known;
    for (QJsonValue const& schema : JsonSchema::Documented("host-json").Words()["oneOf"].toArray())
        known += schema["title"].toString();
    types.removeDuplicates(); // one may show two sides of a type
    QCOMPARE(types, known);
}

void HostJsonFormTest::TheSchemaRefusesWhatItDoesNotSay_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("a missing key") << "bytes" << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("an unknown key") << "colour" << QJsonValue("red");
    QTest::newRow("an unknown phase") << "phase" << QJsonValue("flying");
    QTest::newRow("a text for a figure") << "bytes" << QJsonValue("1");
    QTest::newRow("a negative figure") << "eta" << QJsonValue(-1);
    QTest::newRow("a part of a byte") << "rate" << QJsonValue(1.5);
    QTest::newRow("servers that are none") << "servers" << QJsonValue(QJsonArray{"a"});
    QTest::newRow("half a wait") << "wait" << QJsonValue(QJsonObject{{"server", "a"}});
    QTest::newRow("an unknown type") << "type" << QJsonValue("news");
    QTest::newRow("another type") << "type" << QJsonValue("notice");
}

void HostJsonFormTest::TheSchemaRefusesWhatItDoesNotSay()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QJsonObject line{{"type", "progress"}, {"time", "now"},  {"phase", "idle"},
                     {"fileNumber", 0},    {"fileCount", 0}, {"bytes", 0},
                     {"total", 0},         {"rate", 0},      {"received", 0}};
    QCOMPARE(JsonSchema::Documented("host-json").Fault(line), QString());
    line[key] = value;
    if (value.isUndefined())
        line.remove(key);
    QVERIFY(!JsonSchema::Documented("host-json").Fault(line).isEmpty());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostJsonFormTest)
#include "tst_HostJsonForm.moc"
