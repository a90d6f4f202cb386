#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::ApplicationManifestFileEntry;

namespace {

constexpr qint32 c_Flag = Launcher::c_GameExecutableFlag;
/// Marks the executable of a build for the other system.
constexpr qint32 c_OtherFlag = c_Flag ^ (ApplicationManifestFileEntry::MacGameExecutable |
                                         ApplicationManifestFileEntry::WindowsGameExecutable);
QString const c_Argument = QStringLiteral("[-noautolaunch64bit]");

} // namespace

class StartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheGameGetsOneArgument_data();
    void TheGameGetsOneArgument();
    void TheFirstMarkedEntryIsStarted();
    void OtherBitsBesideTheMarkDoNotMatter();
    void WithoutAMarkedEntryNothingIsStarted_data();
    void WithoutAMarkedEntryNothingIsStarted();
    void TheStartIsLogged_data();
    void TheStartIsLogged();
    void AnExecutableThatCannotBeStartedIsStartedAllTheSame_data();
    void AnExecutableThatCannotBeStartedIsStartedAllTheSame();
    void AnExecutableIsStartedThroughThePlayersLinkOnly_data();
    void AnExecutableIsStartedThroughThePlayersLinkOnly();
    void PermissionsAreFixedBeforeTheStart();
    void AHostThatStopsLeavesPermissionsButStarts();
    void StepsComeInOrder();
    void NothingToFetchIsShownAsIdle();
    void TheFolderComesFromTheSettings();
    void WithoutAFolderNothingIsTouched();
    void WhatTheGamesShareDoesNotPrepareThisGame();
};

void StartTest::TheGameGetsOneArgument_data()
{
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("password");
    AddRow("no login", QString(), QString());
    AddRow("login", "me", "secret");
}

void StartTest::TheGameGetsOneArgument()
{
    QFETCH(QString, login);
    QFETCH(QString, password);
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(bench.App.Start(login, password));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Game.Starts(), QStringList(c_Argument));
}

void StartTest::TheFirstMarkedEntryIsStarted()
{
    LaunchBench bench;
    bench.App.Manifest.Files.clear();
    GameScript const first(bench.Path("z first"));
    for (GameScript const& game : {first, GameScript(bench.Path("a second"))})
        game.Write();
    bench.Put("other", GameScript::Text());
    bench.AddEntry("other", ApplicationManifestFileEntry::Executable);
    bench.AddEntry("z first", c_Flag);
    bench.AddEntry("a second", c_Flag);
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.Host.RunUntil([&] { return !first.Starts().isEmpty(); }));
    QCOMPARE(first.Starts(), QStringList(c_Argument));
    QCOMPARE(bench.Log.Texts(), QStringList("Start  \"" + first.Path + "\""));
}

void StartTest::OtherBitsBesideTheMarkDoNotMatter()
{
    LaunchBench bench;
    bench.App.Manifest.Files.clear();
    bench.AddEntry(LaunchBench::c_Executable, 0xff);
    bench.App.Manifest.Files.front().Locale = "frFR";
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.RunUntilStarted());
}

void StartTest::WithoutAMarkedEntryNothingIsStarted_data()
{
    QTest::addColumn<qint32>("flags");
    QTest::addColumn<bool>("streamed");
    AddRow("executable, not the game's", qint32{2}, false);
    AddRow("every other bit", (0xff & ~c_Flag), false);
    AddRow("executable of the other system", c_OtherFlag, false);
    AddRow("streamed", c_Flag, true);
}

void StartTest::WithoutAMarkedEntryNothingIsStarted()
{
    QFETCH(qint32, flags);
    QFETCH(bool, streamed);
    LaunchBench bench;
    bench.PutTemplates();
    bench.App.Manifest.Files.clear();
    bench.AddEntry(LaunchBench::c_Executable, flags);
    if (streamed)
        bench.App.Manifest.StreamedFiles.swap(bench.App.Manifest.Files);
    bench.Put("read only", "r");
    bench.AddEntry("read only", ApplicationManifestFileEntry::ReadOnly);
    int suspensions = 0;
    bench.App.OnSuspend = [&] { ++suspensions; };
    QVERIFY(!bench.App.Start("me", "secret"));
    QCOMPARE(suspensions, 1);
    QCOMPARE(ModeOf(bench.Path("read only")), 0444);
    QVERIFY(bench.HasLiveFiles()); // made before anybody looks for the executable
    QCOMPARE(bench.Log.Texts(), QStringList());
    QCOMPARE(bench.Host.Errors(), QStringList());
}

void StartTest::TheStartIsLogged_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("logged");
    AddRow("plain", "Game/start", "Game/start");
    AddRow("blanks", "my game", "my game");
    AddRow("quotes", "my \"game\"", "my \\\"game\\\"");
    AddRow("letters", QString::fromUtf8("jeu d'été"), QString::fromUtf8("jeu d'été"));
}

void StartTest::TheStartIsLogged()
{
    QFETCH(QString, name);
    QFETCH(QString, logged);
    LaunchBench bench;
    bench.App.Manifest.Files.clear();
    bench.AddEntry(name, c_Flag);
    QVERIFY(bench.App.Start("me", "secret"));
    auto const messages = bench.Log.Messages();
    QCOMPARE(messages.size(), std::size_t{1});
    QCOMPARE(messages[0].Text, "Start  \"" + bench.Folder + logged + "\"");
    QCOMPARE(messages[0].Type, QtWarningMsg);
    QCOMPARE(messages[0].Category, QString("varnholt.launch"));
}

void StartTest::AnExecutableThatCannotBeStartedIsStartedAllTheSame_data()
{
    QTest::addColumn<QString>("what");
    AddRow("missing", "missing");
    AddRow("not executable", "plain");
    AddRow("folder", "folder");
    AddRow("no such interpreter", "script");
}

void StartTest::AnExecutableThatCannotBeStartedIsStartedAllTheSame()
{
    QFETCH(QString, what);
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put("plain", GameScript::Text());
    QVERIFY(SetMode(bench.Path("plain"), 0644));
    QVERIFY(QDir().mkpath(bench.Path("folder")));
    bench.Put("script", "#!/no/such/interpreter\n");
    QVERIFY(SetMode(bench.Path("script"), 0755));
    bench.App.Manifest.Files.clear();
    bench.AddEntry(what, c_Flag);
    QVERIFY(bench.App.Start("me", "secret"));
    // Qt waits for the system's answer, so a game that runs would be known by now.
    QVERIFY(!bench.Has("plain.starts"));
    QVERIFY(bench.HasLiveFiles());
    QCOMPARE(bench.Log.Texts(), QStringList("Start  \"" + bench.Path(what) + "\""));
    QCOMPARE(bench.Host.Errors(), QStringList());
}

void StartTest::AnExecutableIsStartedThroughThePlayersLinkOnly_data()
{
    QTest::addColumn<bool>("IsPlayers");
    AddRow("the player's", true);
    AddRow("another user's", false);
}

void StartTest::AnExecutableIsStartedThroughThePlayersLinkOnly()
{
    QFETCH(bool, IsPlayers);
    LaunchBench bench;
    QTemporaryDir outside;
    GameScript const other(outside.filePath("game"));
    other.Write();
    QString const executable = bench.Path(LaunchBench::c_Executable);
    QVERIFY(QFile::remove(executable) && QFile::link(other.Path, executable));
    if (!IsPlayers && !GiveLinkToAnother(executable))
        QSKIP("only root can give a link to another user");
    int const mode = ModeOf(other.Path);
    QCOMPARE(bench.App.Start("", ""), IsPlayers);
    QCOMPARE(bench.Log.CountContaining("Start "), IsPlayers ? 1 : 0);
    QCOMPARE(ModeOf(other.Path), mode);
}

void StartTest::PermissionsAreFixedBeforeTheStart()
{
    LaunchBench bench;
    bench.App.Manifest.Files.clear();
    bench.AddEntry(LaunchBench::c_Executable, c_Flag | ApplicationManifestFileEntry::Executable);
    bench.Put("read only", "r");
    bench.AddEntry("read only", ApplicationManifestFileEntry::ReadOnly);
    QVERIFY(SetMode(bench.Game.Path, 0640));
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(ModeOf(bench.Game.Path), 0777);
    QCOMPARE(ModeOf(bench.Path("read only")), 0444);
}

void StartTest::AHostThatStopsLeavesPermissionsButStarts()
{
    LaunchBench bench;
    bench.Put("read only", "r");
    QVERIFY(SetMode(bench.Path("read only"), 0640));
    bench.AddEntry("read only", ApplicationManifestFileEntry::ReadOnly);
    bench.Host.Continue = false;
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(ModeOf(bench.Path("read only")), 0640);
}

void StartTest::StepsComeInOrder()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.PutLiveFiles();
    bench.Put("Wow-64.exe", "client");
    bench.Put("read only", "r");
    QVERIFY(SetMode(bench.Path("read only"), 0640));
    bench.AddEntry("read only", ApplicationManifestFileEntry::ReadOnly);
    QStringList steps;
    auto const look = [&](QString const& p_Step) {
        steps += p_Step + (bench.Has("Wow-64.exe") ? "" : ", client disabled") +
                 (bench.HasLiveFiles() ? ", login screen" : ", no login screen") +
                 (ModeOf(bench.Path("read only")) == 0444 ? ", permissions fixed" : "");
    };
    bench.App.OnGameQuestion = [&] { look("asked"); };
    bench.App.OnSuspend = [&] { look("suspended"); };
    QVERIFY(bench.App.Start("me", "secret"));
    look("started");
    QCOMPARE(steps, QStringList({"asked, client disabled, no login screen",
                                 "suspended, client disabled, login screen",
                                 "started, client disabled, login screen, permissions fixed"}));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login me password secret ."));
}

void StartTest::NothingToFetchIsShownAsIdle()
{
    LaunchBench bench;
    bench.App.UISetting.State = Launcher::ApplicationUISetting::StateNotInstalled;
    bench.App.UISetting.Download.ModeFlag = true;
    bench.App.UISettingChanged = false;
    QVERIFY(bench.App.Start("", ""));
    QCOMPARE(bench.App.UISetting.State, 2);
    QVERIFY(!bench.App.UISetting.Download.ModeFlag);
    QVERIFY(bench.App.UISettingChanged);
    QCOMPARE(bench.Host.FinishedCount.load(), 0);
    QCOMPARE(bench.Host.AsyncCount() + bench.Host.SyncCount(), std::size_t{0});
}

void StartTest::TheFolderComesFromTheSettings()
{
    LaunchBench bench;
    bench.App.InstallationPath = bench.Temporary.path() + "/elsewhere/";
    QVERIFY(bench.App.Start("", ""));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.App.InstallationPath, bench.Folder);
}

void StartTest::WithoutAFolderNothingIsTouched()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.PutLiveFiles();
    bench.Put("Wow-64.exe", "client");
    bench.AddEntry("Wow-64.exe", ApplicationManifestFileEntry::ReadOnly);
    QVERIFY(SetMode(bench.Path("Wow-64.exe"), 0640));
    bench.App.InstallationPath = bench.Folder; // of an installation that is forgotten
    bench.Host.SetSetting("pelmora_app.InstallFolder", QString());
    ScopedCurrentFolder const current(bench.Folder);
    QVERIFY(!bench.App.Start("me", "secret"));
    QCOMPARE(bench.Read("Wow-64.exe"), QByteArray("client"));
    QCOMPARE(ModeOf(bench.Path("Wow-64.exe")), 0640);
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("layout of before"));
    QCOMPARE(bench.Read(LaunchBench::c_Script), QByteArray("script of before"));
    QCOMPARE(bench.Log.Texts(), QStringList()); // nothing was started
}

void StartTest::WhatTheGamesShareDoesNotPrepareThisGame()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.PutLiveFiles();
    bench.Put("Wow-64.exe", "client");
    bench.App.InstallationPath = bench.Folder;
    int questions = 0;
    bench.App.OnGameQuestion = [&] { ++questions; };
    QVERIFY(bench.App.StandartApplication::Start("me", "secret"));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Game.Starts(), QStringList(c_Argument));
    QCOMPARE(questions, 0);
    QVERIFY(bench.Has("Wow-64.exe"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("layout of before"));
    QCOMPARE(bench.Read(LaunchBench::c_Script), QByteArray("script of before"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::StartTest)
#include "tst_Start.moc"
