#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/JsonSchema.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

/// That what each command writes with --json is what docs/publish-json.schema.json says.
class PublishJsonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EachCommandWritesTheTypesOfTheSchema();
    void ProgressReachesItsTotal();
    void AFailureIsAnObject_data();
    void AFailureIsAnObject();
    void TheSchemaRefusesWhatItDoesNotSay();

private:
    /// The objects of an output, each as the schema says; notes their titles down.
    QList<QJsonObject> Objects(QByteArray const& p_Output);
    QList<QJsonObject> Run(QStringList const& p_Arguments, int p_Status = 0);

    JsonSchema const Schema = JsonSchema::Documented("publish-json");
    QStringList Seen;
};

QList<QJsonObject> PublishJsonTest::Objects(QByteArray const& p_Output)
{
    QList<QJsonObject> objects;
    for (QByteArray const& line : p_Output.split('\n')) {
        if (line.isEmpty())
            continue;
        QJsonObject const object = QJsonDocument::fromJson(line).object();
        QString const fault = Schema.Fault(object);
        if (!fault.isEmpty())
            QTest::qFail((line + ": " + fault.toUtf8()).constData(), __FILE__, __LINE__);
        for (QJsonValue const& type : Schema.Words()["oneOf"].toArray()) {
            if (JsonSchema(type.toObject()).Fault(object).isEmpty())
                Seen += type["title"].toString();
        }
        objects += object;
    }
    return objects;
}

QList<QJsonObject> PublishJsonTest::Run(QStringList const& p_Arguments, int p_Status)
{
    ProgramResult const result = RunProgram(p_Arguments + QStringList("--json"));
    if (result.Status != p_Status || !result.Errors.isEmpty())
        QTest::qFail((p_Arguments.join(' ').toUtf8() + result.Errors).constData(), __FILE__,
                     __LINE__);
    return Objects(result.Output);
}

void PublishJsonTest::EachCommandWritesTheTypesOfTheSchema()
{
    Seen.clear();
    BuildSeries game(3);
    game.AddRules(R"({"match": "own", "locale": "frFR"}, {"match": "none", "streamed": true})",
                  R"({"frFR": "French"})");
    QString const& output = game.Options.Output;
    QStringList const rules{"--source", game.Options.Source, "--rules", game.Options.RulesFile};
    QStringList const build = QStringList({"build", "--output", output, "--build", "b"}) + rules;
    Run(build + QStringList("--dry-run"));
    Run(build);
    Run({"list", "--output", output});
    Run({"diff", "--output", output, "build_3", "b", "--players", "9"});
    Run({"rollback", "--output", output, "--build", "build_2"});
    Run({"prune", "--output", output, "--build", "build_1"});
    Run({"hosts", "--output", output, "a.example"});
    Run({"realmlist", "--output", output, "logon.example"});
    Run({"keys", "new", game.SourcePath("key"), "--no-password"});
    Run({"sign", "--output", output, "--sign-key", game.SourcePath("key")});
    Run(QStringList("rules") + rules);
    Run(QStringList({"rules", "--explain", "own"}) + rules);
    QVERIFY(WriteFile(game.OutputPath(BuildSeries::OwnPath(2)), "damaged"));
    Run({"verify", "--output", output}, 1);
    QVERIFY(QFile::remove(game.OutputPath(".varnholt-publish.tree")));
    QFile::remove(game.OutputPath("pelmora_app/version.json.minisig"));
    Run({"adopt", "--output", output}, 1);
    QVERIFY(WriteFile(game.OutputPath(BuildSeries::OwnPath(2)), BuildSeries::Own(2)));
    Run({"adopt", "--output", output});

    ProgramRun serve({"serve", "--root", output, "--port", "0", "--json"});
    QByteArray const serving = serve.ReadLine();
    QUrl const url(QJsonDocument::fromJson(serving)["url"].toString());
    QCOMPARE(Ask(static_cast<quint16>(url.port()), "GET /cdns.info").Status, 200);
    QByteArray const request = serve.ReadLine();
    serve.Signal(SIGTERM);
    Objects(serving + '\n' + request);

    QStringList titles;
    for (QJsonValue const& type : Schema.Words()["oneOf"].toArray())
        titles += type["title"].toString();
    Seen.removeDuplicates();
    for (QStringList* const list : {&titles, &Seen})
        list->sort();
    QCOMPARE(Seen, titles);
}

void PublishJsonTest::ProgressReachesItsTotal()
{
    BuildSeries const game(1);
    auto const objects = Run({"verify", "--output", game.Options.Output});
    QCOMPARE(objects.size(), 3);
    QCOMPARE(objects[0]["phase"].toString(), QString("reading-the-tree"));
    QCOMPARE(objects[0]["bytes"].toInt(-1), 0);
    for (int const index : {0, 1})
        QCOMPARE(objects[index]["total"].toInt(), 8 + 6 + BuildSeries::Own(1).size());
    QCOMPARE(objects[1]["bytes"], objects[1]["total"]);
    QCOMPARE(objects[2]["filesRead"].toInt(), 3);
}

void PublishJsonTest::AFailureIsAnObject_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    for (char const* const command : {"list", "verify", "adopt"})
        AddRow(command, QStringList({command, "--output", "/none"}), 1);
    AddRow("rollback", QStringList({"rollback", "--output", "/none", "--build", "b"}), 1);
    AddRow("prune", QStringList({"prune", "--output", "/none", "--keep", "1"}), 1);
    AddRow("diff", QStringList({"diff", "--output", "/none", "b"}), 1);
    AddRow("rules", QStringList({"rules", "--source", "/none"}), 1);
    AddRow("serve", QStringList({"serve", "--root", "/none"}), 1);
    AddRow("hosts", QStringList({"hosts", "--output", "/none", "a"}), 1);
    AddRow("build",
           QStringList(
               {"build", "--source", "/none", "--output", "/none/o", "--build", "b", "--local"}),
           1);
    AddRow(
        "a wrong option",
        QStringList({"build", "--source", "/none", "--output", "o", "--build", "a/b", "--local"}),
        2);
}

void PublishJsonTest::AFailureIsAnObject()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    auto const objects = Run(arguments, status);
    QCOMPARE(objects.size(), 1);
    QCOMPARE(objects[0]["type"].toString(), QString("error"));
    QCOMPARE(objects[0]["exitStatus"].toInt(), status);
    QVERIFY(!objects[0]["text"].toString().isEmpty());
}

void PublishJsonTest::TheSchemaRefusesWhatItDoesNotSay()
{
    QJsonObject const good{{"type", "progress"}, {"phase", "reading"}, {"bytes", 1}, {"total", 2}};
    QCOMPARE(Schema.Fault(good), QString());
    for (QJsonObject const& change :
         {QJsonObject{{"bytes", -1}}, QJsonObject{{"total", "2"}}, QJsonObject{{"phase", "flying"}},
          QJsonObject{{"colour", "red"}}, QJsonObject{{"type", "news"}}}) {
        QJsonObject bad = good;
        bad[change.keys().first()] = *change.begin();
        QVERIFY2(!Schema.Fault(bad).isEmpty(), qPrintable(change.keys().first()));
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PublishJsonTest)
#include "tst_PublishJson.moc"
