#include "Launcher/Application/LauncherLocale.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Screen/PhotographedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>

namespace Varnholt::TestSupport {

/// Pictures of the program in all its states: in each language and in two sizes, and how it scales.
/// They go to the folder that VARNHOLT_SCREENSHOTS names, as LANGUAGE-WIDTH-STATE.png.
class Screenshots : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void All_data();
    void All();
    void ForDocuments();

private:
    void NoGame();
    void Begin();
    void Install();
    void Trouble();
    void Complete();
    void Play();
    void Elsewhere();
    void Update();
    void Uninstall();

    std::unique_ptr<PhotographedGame> Game;
    QString const Name = ScreenGame::c_Name;
};

namespace {

constexpr char c_LargeFile[] = "Data/common.MPQ";
QStringList const c_ToHistory{"Up", "Up", "Up", "Up", "Up"};

/// As a desktop says that its user likes it dark.
constexpr char c_DarkDesktop[] = "[Colors:Window]\nBackgroundNormal=35,38,41\n"
                                 "ForegroundNormal=239,240,241\n"
                                 "[Colors:View]\nBackgroundNormal=27,30,32\n"
                                 "ForegroundNormal=239,240,241\n"
                                 "[Colors:Button]\nBackgroundNormal=49,54,59\n"
                                 "ForegroundNormal=239,240,241\n";

} // namespace

void Screenshots::All_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("dark");
    QSize const small(1024, 640);
    QSize const large(1600, 900);
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        for (QSize const& size : {small, large})
            AddRow(qPrintable(QStringLiteral("%1-%2").arg(locale.Code).arg(size.width())),
                   locale.Code, size, 1.0, false);
    QString const english = QStringLiteral("enUS");
    AddRow("enUS-1024-dark", english, small, 1.0, true);
    AddRow("enUS-1024-125", english, small, 1.25, false);
    AddRow("enUS-1600-150", english, large, 1.5, false);
    AddRow("enUS-1920-200", english, QSize(1920, 1080), 2.0, false);
    AddRow("enUS-1024-200", english, small, 2.0, false);
}

void Screenshots::All()
{
    constexpr int c_LargeBytes = 200'000'000;

    QFETCH(QString, language);
    QFETCH(QSize, size);
    QFETCH(double, scale);
    QFETCH(bool, dark);
    ScopedVariable const factor("QT_SCALE_FACTOR", QByteArray::number(scale));
    ScopedVariable const desktop("XDG_CURRENT_DESKTOP", dark ? "KDE" : "");
    ScopedVariable const version("KDE_SESSION_VERSION", "5");
    Game = std::make_unique<PhotographedGame>(size, scale, language, QTest::currentDataTag());
    QVERIFY2(Game->On().Problem().isEmpty(), qPrintable(Game->On().Problem()));
    QVERIFY(WriteFile(Game->Base + "home/.config/kdeglobals", c_DarkDesktop));
    Game->Content.Add({c_LargeFile, QByteArray(c_LargeBytes, '\0')});
    Game->Publish();
    for (auto const part : {&Screenshots::NoGame, &Screenshots::Begin, &Screenshots::Install,
                            &Screenshots::Trouble, &Screenshots::Complete, &Screenshots::Play,
                            &Screenshots::Elsewhere, &Screenshots::Update, &Screenshots::Uninstall})
        if (!QTest::currentTestFailed())
            (this->*part)();
    Game.reset();
}

/// Of a game that is large enough to look at, and a folder as a user has it.
void Screenshots::ForDocuments()
{
    constexpr int c_Bytes = 60'000'000;

    Game = std::make_unique<PhotographedGame>(QSize(1024, 640), 1, "enUS", "documents");
    Game->Content.Add({c_LargeFile, SampleContent::Bytes(c_Bytes)});
    Game->Publish();
    Game->Server.Script("GET " + Game->Content.ServerPath(c_LargeFile))
        .Always(Answer::Drip(20'000, 15));
    // Nothing is put there; but the dialog tells whether something could be.
    QVERIFY2(QFileInfo("/home").isWritable(), "nobody but root can show /home/anna");
    Game->Home = "/home/anna";
    Game->Reopen();
    Game->Take("window-new");
    Game->PressPrimary();
    Game->Take("window-install");
    Game->Home.clear();
    Game->Reopen();
    Game->PressPrimary();
    Game->Take("window-installing");
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitForTitle("6[0-9] % – " + Name));
    Game->Take("window");
    Game.reset();
}

void Screenshots::NoGame()
{
    QString const folder = Game->Base + "no modules";
    QVERIFY(QDir().mkpath(folder));
    Game->Reopen({"--modules", folder}, ".+");
    Game->Take("01-no-game");
    Game->Reopen();
}

void Screenshots::Begin()
{
    Game->Take("10-new");
    Game->TakeOpened("11-menu", {"F10"});
    Game->Choose({"Up"}); // the settings: what follows them is for a game
    QVERIFY(Game->WaitUntil([&] { return Game->On().Windows() == 2; }));
    Game->Take("12-settings");
    Game->On().Press({"Escape"});
}

void Screenshots::Install()
{
    // A folder with other files, and then the one that is proposed.
    Game->Put("mine.txt", "mine");
    Game->PressPrimary();
    Game->Take("20-install-warning");
    Game->On().Press({"Escape"});
    QVERIFY(QFile::remove(Game->Path("mine.txt")));
    Game->PressPrimary();
    Game->Take("21-install");
    QString const large = "GET " + Game->Content.ServerPath(c_LargeFile);
    Game->Server.Script(large).Always(Answer::Drip(200'000, 20));
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 1.MPQ"))
        .Always(Answer::Status(503));
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 2.MPQ"))
        .Always(Answer::Status(404));
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitForTitle("2[0-9].% – " + Name));
    Game->Take("22-downloading");
    QVERIFY(Game->Press(Name, {"F9"}));
    QVERIFY(Game->WaitForRest());
    Game->Take("23-paused");
    Game->TakeOpened("24-menu-busy", {"F10"});
    Game->Server.ClearScript(large);
}

void Screenshots::Trouble()
{
    // The server fails for a while, and one file is not there.
    QVERIFY(Game->Press(Name, {"F9"}));
    QVERIFY(Game->WaitUntil([&] { return Game->Requests("Data/streamed 1.MPQ") > 6; }));
    Game->Take("30-retrying");
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 1.MPQ"))
        .Always(Answer::Normal());
    QVERIFY(Game->WaitForRest());
    Game->Take("31-given-up");
    QVERIFY(Game->Press(Name, {"Tab", "Tab", "Tab", "space"}));
    Game->Take("32-given-up-files");
    Game->Choose(c_ToHistory);
    Game->Take("33-history");
    Game->Choose(c_ToHistory);
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 2.MPQ"))
        .Always(Answer::Normal());
}

void Screenshots::Complete()
{
    Game->PressPrimary();
    QVERIFY(Game->WaitForTitle(Name));
    QVERIFY(Game->Has("Data/streamed 2.MPQ"));
    Game->Take("40-complete");
    Game->TakeOpened("41-menu", {"F10"});
    // A check may be done before anybody has looked.
    QVERIFY(Game->WaitUntil([&] {
        Game->Choose({"Down"});
        return QTest::qWaitFor([&] { return Game->On().Window("[1-9].% – ") != 0; }, 3'000);
    }));
    Game->TakeAtOnce("42-verifying");
    QVERIFY(Game->WaitForTitle(Name));
}

void Screenshots::Play()
{
    Game->KeepRunning();
    Game->PressPrimary();
    Game->Take("50-login");
    Game->On().Type("me");
    Game->On().Press({"Tab"});
    Game->On().Type("secret");
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitUntil([&] { return Game->Starts() == 1; }));
    Game->Take("51-playing");
    Game->LetGo();
    QVERIFY(Game->WaitForTitle(Name));
}

/// Another program repairs the game meanwhile.
void Screenshots::Elsewhere()
{
    QCOMPARE(Game->Close(), 0);
    QVERIFY(QFile::remove(Game->Path("Data/base.MPQ")));
    QString const gate = Game->HoldContent("Data/base.MPQ", 1'000);
    HostProcess other(*Game, {"repair"});
    QVERIFY(
        Game->WaitUntil([&] { return QFileInfo(Game->Path("Data/base.MPQ.part")).size() > 0; }));
    Game->Reopen();
    Game->Take("55-elsewhere");
    Game->Server.OpenGate(gate);
    QCOMPARE(other.Finish().Status, 0);
}

/// The next build has a file that no disk has room for.
void Screenshots::Update()
{
    Game->Content.Build = "build_2";
    Game->Content.Add({"Data/expansion.MPQ", "much"});
    Game->Publish();
    Game->Server.Script(Game->Content.ServerPath("Data/expansion.MPQ"))
        .Always(Answer::ClaimingLength(Q_INT64_C(900'000'000'000'000)));
    int const asked = Game->Server.Count(Game->Content.VersionPath());
    Game->Reopen();
    QVERIFY(
        Game->WaitUntil([&] { return Game->Server.Count(Game->Content.VersionPath()) > asked; }));
    Game->Take("56-update-available");
    Game->PressPrimary();
    QVERIFY(Game->WaitUntil([&] { return Game->On().Window("– " + Name) != 0; }));
    QVERIFY(Game->WaitForRest());
    Game->Take("57-disk-full");
}

void Screenshots::Uninstall()
{
    Game->Put("Screenshots/1.jpg", "mine");
    Game->Put("Screenshots/2.jpg", "mine");
    Game->Choose({"Up"});
    Game->Take("60-uninstall");
    // The server is slow to tell what belongs to the game.
    Game->Server.Script("GET " + Game->Content.VersionPath()).Always(Answer::SilentBeforeHeaders());
    Game->On().Press({"shift+Tab", "space"});
    Game->Take("61-uninstalling");
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::Screenshots)
#include "Screenshots.moc"
