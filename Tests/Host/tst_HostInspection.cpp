#include "Tests/Host/FolderListing.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

/// The commands that look at a game and change nothing.
class HostInspectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ACheckTellsWhatAnUpdateWouldFetchAndWhy();
    void ACheckIsToldToPeopleToo();
    void ACheckLeavesOutWhatLiesThereOfAFile();
    void ACheckDoesWithoutSizesThatAServerDoesNotTell();
    void ACheckOfAnUpToDateGameSucceeds();
    void ACheckTrustsWhatAnUpdateTrusts();
    void ACheckLooksAtEveryFileAfterAnInterruptedRun();
    void ACheckLooksAtEveryFileForANewBuild();
    void ACheckFindsWhatTheUpdateFetches();
    void AVerificationFindsEveryWrongFile();
    void AVerificationOfARightGameSucceeds();
    void OtherLanguagesAreLookedAtByNeither();
    void AnInspectionChangesNothing_data();
    void AnInspectionChangesNothing();
    void AnUnreachableServerIsTold();
    void AnInterruptedCheckChangesNothing();

private:
    Outcome Run(QStringList const& p_Arguments) const
    {
        return HostProcess(*Game, p_Arguments).Finish();
    }
    /// "cause file" of each finding.
    static QStringList Findings(Outcome const& p_Outcome);
    void Break();
    void PublishAnotherBuild() const;
    QStringList Everything() const
    {
        return FolderListing(Game->Folder) + FolderListing(Game->Base + "settings/");
    }

    std::unique_ptr<HostGame> Game;
};

void HostInspectionTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish().PutInstalled();
}

void HostInspectionTest::cleanup()
{
    Game.reset();
}

QStringList HostInspectionTest::Findings(Outcome const& p_Outcome)
{
    QStringList findings;
    for (QJsonObject const& line : JsonReport(p_Outcome.Out).Of("finding"))
        findings += line["cause"].toString() + ' ' + line["file"].toString();
    return findings;
}

/// One file for each of the causes.
void HostInspectionTest::Break()
{
    Game->Put("readme.txt", "damaged");
    QVERIFY(QFile::remove(Game->Path("Data/base.MPQ")));
    QVERIFY(QFile::remove(Game->Path("Data/enUS/locale.MPQ")));
    QVERIFY(QDir().mkpath(Game->Path("Data/enUS/locale.MPQ")));
    Game->Put("ToDownload.db", "Data/streamed 1.MPQ\n");
}

void HostInspectionTest::PublishAnotherBuild() const
{
    Game->Content.Build = "build_2";
    Game->Publish();
}

void HostInspectionTest::ACheckTellsWhatAnUpdateWouldFetchAndWhy()
{
    Break();
    Outcome const outcome = Run({"--json", "check"});
    QCOMPARE(outcome.Status, 3);
    QStringList const expected{"missing Data/base.MPQ", "blocked Data/enUS/locale.MPQ",
                               "different readme.txt", "pending Data/streamed 1.MPQ"};
    QCOMPARE(Findings(outcome), expected);
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Texts("finding", "bytes"), (QStringList{"60000", "2000", "7", "9000"}));
    QCOMPARE(report.Of("finding")[2]["remedy"].toString(), QString("run \"update\""));
    QCOMPARE(report.Last()["error"].toString(), QString("update-available"));
    QVERIFY2(report.Last()["text"].toString().contains("Sample build fetches 4 files (69.3 KiB)"),
             qPrintable(outcome.Out));
    QCOMPARE(report.Last()["toFetch"].toObject(),
             (QJsonObject{{"files", 4}, {"bytes", 71007}, {"atLeast", false}}));
    QVERIFY(!report.Phases().contains("downloading-base"));
}

void HostInspectionTest::ACheckIsToldToPeopleToo()
{
    Break();
    Outcome const outcome = Run({"-q", "check"});
    QCOMPARE(outcome.Status, 3);
    QCOMPARE(outcome.Out.section('\n', 1), QString("missing     58.6 KiB  Data/base.MPQ\n"
                                                   "blocked      2.0 KiB  Data/enUS/locale.MPQ\n"
                                                   "different    7 bytes  readme.txt\n"
                                                   "pending      8.8 KiB  Data/streamed 1.MPQ\n"));
    QVERIFY2(outcome.Out.startsWith("60.5 KiB are needed on the volume of " + Game->Folder),
             qPrintable(outcome.Out)); // two of them replace what is there
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(Run({"check"}).Err.contains("\n1 file compared: 7 bytes in 0:0"), "no totals");
}

void HostInspectionTest::ACheckLeavesOutWhatLiesThereOfAFile()
{
    QVERIFY(QFile::remove(Game->Path("Data/base.MPQ")));
    Game->Put("Data/base.MPQ.part", SampleContent::Bytes(60000, 1).left(12345));
    QCOMPARE(JsonReport(Run({"--json", "check"}).Out).Texts("finding", "bytes"),
             QStringList("47655"));
    Game->Put("Data/base.MPQ.part", SampleContent::Bytes(60001, 1));
    QCOMPARE(JsonReport(Run({"--json", "check"}).Out).Texts("finding", "bytes"), QStringList("0"));
}

void HostInspectionTest::ACheckDoesWithoutSizesThatAServerDoesNotTell()
{
    Break();
    Game->Server.Script(Game->Content.ServerPath("Data/base.MPQ")).Always(Answer::Status(404));
    Outcome const outcome = Run({"--json", "check"});
    QCOMPARE(outcome.Status, 3);
    JsonReport const report(outcome.Out);
    QVERIFY(!report.Of("finding")[0].contains("bytes"));
    QCOMPARE(report.Of("finding")[1]["bytes"].toInt(), 2000);
    QVERIFY2(report.Last()["text"].toString().contains("4 files (at least 10.7 KiB)"),
             qPrintable(outcome.Out));
    QVERIFY(report.Last()["toFetch"].toObject()["atLeast"].toBool());
}

void HostInspectionTest::ACheckOfAnUpToDateGameSucceeds()
{
    Outcome const outcome = Run({"--json", "check"});
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(Findings(outcome), QStringList());
    QJsonObject const last = JsonReport(outcome.Out).Last();
    QCOMPARE(last["transfers"].toInt(-1), 0);
    QCOMPARE(last["totals"].toObject()["files"].toInt(), 3);
    QCOMPARE(last["toFetch"].toObject()["files"].toInt(-1), 0);
    QString const out = Run({"-q", "check"}).Out;
    QVERIFY2(out.startsWith("Mists of Pandaria, build Sample build, is up to date (3 files "
                            "compared: 60.6 KiB in 0:0"),
             qPrintable(out));
}

void HostInspectionTest::ACheckTrustsWhatAnUpdateTrusts()
{
    Game->Put("Data/first build.MPQ", "damaged");
    Game->Put("Data/streamed 1.MPQ", "damaged");
    QCOMPARE(Run({"--json", "check"}).Status, 0);
    QVERIFY(QFile::remove(Game->Path("Data/first build.MPQ")));
    QVERIFY(QFile::remove(Game->Path("Data/streamed 1.MPQ")));
    Outcome const outcome = Run({"--json", "check"});
    QCOMPARE(Findings(outcome),
             (QStringList{"missing Data/first build.MPQ", "missing Data/streamed 1.MPQ"}));
    QCOMPARE(outcome.Status, 3);
}

void HostInspectionTest::ACheckLooksAtEveryFileAfterAnInterruptedRun()
{
    Game->Put("Data/first build.MPQ", "damaged");
    Game->Put("Data/streamed 1.MPQ", "damaged");
    Game->SetSetting("host/pelmora_app/unfinished", true);
    QCOMPARE(Findings(Run({"--json", "check"})),
             (QStringList{"different Data/first build.MPQ", "different Data/streamed 1.MPQ"}));
    QVERIFY(Game->IsMarkedUnfinished());
}

void HostInspectionTest::ACheckLooksAtEveryFileForANewBuild()
{
    Game->Put("Data/first build.MPQ", "damaged");
    Game->Put("Data/streamed 1.MPQ", "damaged");
    PublishAnotherBuild();
    QCOMPARE(Findings(Run({"--json", "check"})),
             (QStringList{"different Data/first build.MPQ", "different Data/streamed 1.MPQ"}));
    QCOMPARE(Game->Setting("host/pelmora_app/build").toString(), QString("build_1"));
}

void HostInspectionTest::ACheckFindsWhatTheUpdateFetches()
{
    Break();
    QVERIFY(QDir(Game->Path("Data/enUS/locale.MPQ")).removeRecursively());
    QStringList found = JsonReport(Run({"--json", "check"}).Out).Texts("finding", "file");
    found.sort();
    Game->ForgetRequests();
    Outcome const outcome = Run({"--json", "update"});
    QCOMPARE(outcome.Status, 0);
    QStringList fetched = Game->Requested(); // the size first, then the file
    fetched.removeDuplicates();
    QCOMPARE(fetched, found);
    QCOMPARE(JsonReport(outcome.Out).Last()["transfers"].toInt(), found.size());
    QCOMPARE(Run({"--json", "check"}).Status, 0);
}

void HostInspectionTest::AVerificationFindsEveryWrongFile()
{
    Break();
    Game->Put("Data/first build.MPQ", "damaged");
    Game->Put("Data/streamed 2.MPQ", "damaged");
    Outcome const outcome = Run({"--json", "verify"});
    QCOMPARE(outcome.Status, 4);
    QStringList const expected{"missing Data/base.MPQ", "different Data/first build.MPQ",
                               "blocked Data/enUS/locale.MPQ", "different readme.txt",
                               "different Data/streamed 2.MPQ"};
    QCOMPARE(Findings(outcome), expected);
    JsonReport const report(outcome.Out);
    QCOMPARE(report.Last()["error"].toString(), QString("files-wrong"));
    QCOMPARE(report.Texts("finding", "bytes").join(""), QString());
    QCOMPARE(report.Last()["totals"].toObject()["files"].toInt(), 4);
    QCOMPARE(Game->Requested(), QStringList());
}

void HostInspectionTest::AVerificationOfARightGameSucceeds()
{
    Outcome const outcome = Run({"-q", "verify"});
    QVERIFY2(outcome.Out.startsWith("every file of Mists of Pandaria, build Sample build, is right "
                                    "(6 files compared: 106.5 KiB in 0:0"),
             qPrintable(outcome.Out));
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
}

void HostInspectionTest::OtherLanguagesAreLookedAtByNeither()
{
    Game->Put("Data/frFR/locale.MPQ", "damaged");
    QCOMPARE(Run({"-q", "check"}).Status, 0);
    QCOMPARE(Run({"-q", "verify"}).Status, 0);
}

void HostInspectionTest::AnInspectionChangesNothing_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("broken");
    QTest::addColumn<bool>("anotherBuild");
    QTest::addColumn<int>("status");
    QTest::newRow("check, up to date") << "check" << false << false << 0;
    QTest::newRow("check, broken") << "check" << true << false << 3;
    QTest::newRow("check, another build") << "check" << true << true << 3;
    QTest::newRow("verify, right") << "verify" << false << false << 0;
    QTest::newRow("verify, broken") << "verify" << true << false << 4;
    QTest::newRow("verify, another build") << "verify" << true << true << 4;
    QTest::newRow("mirrors") << "mirrors" << true << false << 0;
    QTest::newRow("locales") << "locales" << true << false << 0;
    QTest::newRow("status") << "status" << true << false << 0;
}

void HostInspectionTest::AnInspectionChangesNothing()
{
    QFETCH(QString, command);
    QFETCH(bool, broken);
    QFETCH(bool, anotherBuild);
    QFETCH(int, status);
    if (broken)
        Break();
    if (anotherBuild)
        PublishAnotherBuild();
    Game->Put("Data/base.MPQ.part", "a beginning");
    Game->Put("Wow.app/Contents/MacOS/Wow", "of an older build");
    Game->Put("of the user's.txt", "mine");
    QStringList const before = Everything();
    QVERIFY(before.size() > 10);
    QCOMPARE(Run({"--json", command}).Status, status);
    QCOMPARE(Everything(), before);
}

void HostInspectionTest::AnUnreachableServerIsTold()
{
    QStringList const before = Everything();
    QStringList const options{"--settings", Game->SettingsFile, "--content-url",
                              ScriptedServer::RefusingUrl("/")};
    for (char const* const command : {"check", "verify"}) {
        Outcome const outcome = HostProcess(*Game, options, {"--json", command}).Finish();
        QCOMPARE(JsonReport(outcome.Out).Last()["error"].toString(), QString("server-unreachable"));
        QCOMPARE(outcome.Status, 5);
    }
    QCOMPARE(Everything(), before);
}

void HostInspectionTest::AnInterruptedCheckChangesNothing()
{
    Break();
    QStringList const before = Everything();
    QString const path = Game->Content.ServerPath("Data/base.MPQ");
    Game->Server.Script(path).Always(Answer::SilentBeforeHeaders());
    HostProcess process(*Game, {"--json", "check"});
    QVERIFY(process.WaitUntil([&] { return Game->Server.Count(path) > 0; }));
    process.Signal(SIGINT);
    Outcome const outcome = process.Finish();
    QCOMPARE(JsonReport(outcome.Out).Last()["error"].toString(), QString("interrupted"));
    QCOMPARE(outcome.Status, 130);
    QCOMPARE(Everything(), before);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostInspectionTest)
#include "tst_HostInspection.moc"
