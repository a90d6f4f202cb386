#include "Host/Core/Session/ControlLine.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Host::RunPhase;
using Host::RunSnapshot;

class HostSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnInstallationBringsEverything();
    void EveryRunEndsExactlyOnce();
    void ARequestDuringARunIsRefused();
    void OneSessionServesManyRequests();
    void ALanguageIsSetWhileTheSessionLives();
    void AStoppedRepairEndsAndIsNotTakenForAWholeOne();
    void ARepairThatIsStoppedBeforeItsFilesEnds();
    void ASecondSessionBesideTheFirstIsRefused();
    void ARunKnowsWhatOthersHaveWritten();
};

void HostSessionTest::AnInstallationBringsEverything()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Info->Name, QString("Mists of Pandaria"));
    QVERIFY(!game.Status().IsInstalled);
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Result().Build, QString("build_1"));
    QCOMPARE(game.Result().BuildName, QString("Sample build"));
    QCOMPARE(game.Result().Folder, game.Folder);
    QCOMPARE(game.Result().Transfers, 6u);
    QCOMPARE(game.Notices, QStringList());

    Host::InstallStatus const status = game.Status();
    QVERIFY(status.IsInstalled && status.FolderExists && !status.IsUnfinished);
    QCOMPARE(status.Folder, game.Folder);
    QCOMPARE(status.Build, QString("build_1"));
    QCOMPARE(status.PendingBase + status.PendingStreamed, 0);
    for (QString const& file : game.FilesOnDisk())
        QVERIFY2(!file.endsWith(".part") && !file.contains("varnholt"), qPrintable(file));
}

void HostSessionTest::EveryRunEndsExactlyOnce()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    game.Status(); // what was on its way has arrived
    QCOMPARE(game.Results.size(), std::size_t(1));
    std::size_t const said = game.Snapshots.size();
    game.Session().Interrupt();
    game.Session().Pause();
    game.Session().Continue();
    game.Status();
    QCOMPARE(game.Results.size(), std::size_t(1));
    QCOMPARE(game.Snapshots.size(), said);

    QCOMPARE(game.Run(RequestType::ChooseLocale, "xxXX"), QString("locale-not-offered"));
    game.Status();
    QCOMPARE(game.Results.size(), std::size_t(1));
    QCOMPARE(game.Phases().back(), RunPhase::Failed);
}

void HostSessionTest::ARequestDuringARunIsRefused()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const version = game.Content.VersionPath();
    game.Server.Script(version).Then(Answer().Held());
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPhase(RunPhase::Connecting));
    Host::RunRequest other;
    other.Kind = RequestType::Uninstall;
    quint64 const refused = game.Session().Start(other);
    QCOMPARE(game.End(), QString("session-busy"));
    QCOMPARE(game.EndedIds, std::vector<quint64>{refused});
    QString const path = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + path).Then(Answer::SilentAfter(1000));
    game.Server.OpenGate(version);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 1000));
    QString const socket = Host::ControlLine::SocketOf(game.Folder);
    QVERIFY(QFile::exists(socket));
    game.Session().Start(other);
    QVERIFY(game.WaitUntil([&] { return game.Results.size() == 2; }));
    QVERIFY(QFile::exists(socket)); // the run goes on, and is found
    game.Server.OpenGate(path);
    QVERIFY(game.WaitUntil([&] { return game.Results.size() == 3; }));
    QVERIFY(!QFile::exists(socket));
    QVERIFY(!game.Result().Problem);
    QCOMPARE(game.EndedIds, (std::vector<quint64>{refused, refused + 1, refused - 1}));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostSessionTest::OneSessionServesManyRequests()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("not-installed"));
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Run(RequestType::ListLocales), QString("done"));
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Result().Transfers, 0u);
    QCOMPARE(game.Run(RequestType::Uninstall), QString("done"));
    QCOMPARE(game.Run(RequestType::Update), QString("not-installed"));
    QCOMPARE(game.Install(), QString("done")); // of the files that stayed
    QCOMPARE(game.Result().Transfers, 0u);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostSessionTest::ALanguageIsSetWhileTheSessionLives()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    for (QString const& code : {QString("esES"), QString("frFR")}) {
        game.Session().SetLanguage(code);
        QCOMPARE(game.Status().Locale, code);
    }
    game.Session().SetLanguage("no language");
    QCOMPARE(game.Status().Locale, QString("frFR"));
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong("frFR"), QStringList());
    QCOMPARE(game.Run(RequestType::ChooseLocale, "enUS"), QString("done"));
    QCOMPARE(game.Status().Locale, QString("enUS"));
    game.Session().SetLanguage("esES"); // the game has its own now
    QCOMPARE(game.Status().Locale, QString("enUS"));
}

void HostSessionTest::AStoppedRepairEndsAndIsNotTakenForAWholeOne()
{
    constexpr qint64 c_Bytes = qint64{1} << 30;

    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("Data/first build.MPQ", "damaged"); // what an ordinary comparison trusts
    QVERIFY(QFile::resize(game.Path("readme.txt"), c_Bytes));
    QVERIFY(game.Open());
    game.Start(RequestType::Repair);
    QVERIFY(game.WaitUntil(
        [&] { return !game.Snapshots.empty() && game.Snapshots.back().BytesDone > c_Bytes / 8; }));
    game.Session().StopRepair();
    QCOMPARE(game.End(), QString("done"));
    QVERIFY(game.Result().IsRepairStopped);
    QCOMPARE(game.Wrong(), QStringList("Data/first build.MPQ"));
    QVERIFY(game.Status().IsUnfinished);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(!game.Result().IsRepairStopped);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostSessionTest::ARepairThatIsStoppedBeforeItsFilesEnds()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Server.Script(game.Content.VersionPath()).Then(Answer::SilentBeforeHeaders());
    QVERIFY(game.Open());
    game.Start(RequestType::Repair);
    QVERIFY(game.WaitForPhase(RunPhase::Connecting));
    game.Session().StopRepair();
    QCOMPARE(game.End(), QString("interrupted"));
    QVERIFY(game.Result().IsRepairStopped);
    QVERIFY(!game.Status().IsUnfinished);
}

void HostSessionTest::ASecondSessionBesideTheFirstIsRefused()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    SessionGame other;
    QVERIFY(!other.Open());
    QCOMPARE(other.OpenFailure->Identifier(), QString("module-unloadable"));
    other.Close();
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostSessionTest::ARunKnowsWhatOthersHaveWritten()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Verify), QString("not-installed"));
    game.PutInstalled(); // as another program does
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    game.SetSetting("theirs", 1);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Setting("theirs"), QVariant("1"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostSessionTest)
#include "tst_HostSession.moc"
