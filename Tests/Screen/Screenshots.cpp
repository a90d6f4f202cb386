#include "Launcher/Application/LauncherLocale.hpp"
#include "Tests/Screen/ScreenGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>

namespace Varnholt::TestSupport {

/// Pictures of the program in all its states, in each language and in two sizes. They go to the
/// folder that VARNHOLT_SCREENSHOTS names, as LANGUAGE-WIDTH-STATE.png.
class Screenshots : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void All_data();
    void All();
    void ForDocuments();

private:
    void Begin();
    void Install();
    void Trouble();
    void Complete();
    void Play();
    void Uninstall();

    void PressPrimary();
    void Take(QString const& p_State);
    /// Opens something by keys, shows it, closes it by Escape.
    void TakeOpened(QString const& p_State, QStringList const& p_Keys);

    QString Prefix;
    QImage Last; ///< that was taken: what comes is another one
    QSize Size;
    std::unique_ptr<ScreenGame> Game;
    QString const Name = ScreenGame::c_Name;
};

void Screenshots::All_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QSize>("size");
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        for (QSize const& size : {QSize(1024, 640), QSize(1600, 900)})
            AddRow(qPrintable(QStringLiteral("%1-%2").arg(locale.Code).arg(size.width())),
                   locale.Code, size);
}

void Screenshots::All()
{
    QFETCH(QString, language);
    QFETCH(QSize, size);
    Prefix =
        qEnvironmentVariable("VARNHOLT_SCREENSHOTS", ".") + '/' + QTest::currentDataTag() + '-';
    Size = size;
    Game = std::make_unique<ScreenGame>(size, language);
    QVERIFY2(Game->On().Problem().isEmpty(), qPrintable(Game->On().Problem()));
    for (auto const part : {&Screenshots::Begin, &Screenshots::Install, &Screenshots::Trouble,
                            &Screenshots::Complete, &Screenshots::Play, &Screenshots::Uninstall})
        if (!QTest::currentTestFailed())
            (this->*part)();
    Game.reset();
}

/// Of a game that is large enough to look at.
void Screenshots::ForDocuments()
{
    constexpr int c_Bytes = 60'000'000;

    Prefix = qEnvironmentVariable("VARNHOLT_SCREENSHOTS", ".") + "/documents-";
    Size = {1024, 640};
    Game = std::make_unique<ScreenGame>(Size);
    Game->Content.Add({"Data/common.MPQ", SampleContent::Bytes(c_Bytes)});
    Game->Publish();
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/common.MPQ"))
        .Always(Answer::Drip(20'000, 15));
    QVERIFY(Game->Open());
    Take("window-new");
    PressPrimary();
    Take("window-install");
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitForTitle("6[0-9] % – " + Name));
    Take("window");
    Game.reset();
}

void Screenshots::Take(QString const& p_State)
{
    QVERIFY2(Game->WaitUntil([this] { return Game->On().Picture() != Last; }), qPrintable(p_State));
    QImage const picture = Last = Game->On().StillPicture();
    if (!picture.save(Prefix + p_State + ".png"))
        qFatal("%s%s.png cannot be written", qPrintable(Prefix), qPrintable(p_State));
}

void Screenshots::TakeOpened(QString const& p_State, QStringList const& p_Keys)
{
    QVERIFY(Game->Press(Name, p_Keys));
    Take(p_State);
    for (int i = 0; i < 2; ++i)
        Game->On().Press({"Escape"});
}

/// The large button, while there is none to pause.
void Screenshots::PressPrimary()
{
    constexpr QPoint c_FromCorner(200, 70);

    Game->On().Click(QPoint(Size.width(), Size.height()) - c_FromCorner);
}

void Screenshots::Begin()
{
    QVERIFY(Game->Open());
    Game->On().Resize(Game->On().Window(Name), Size);
    Take("10-new");
    TakeOpened("11-menu", {"F10"});
    QVERIFY(Game->Press(Name, {"F10"}));
    Game->On().Press({"Up", "Return"}); // the settings: what follows them is for a game
    QVERIFY(Game->WaitUntil([&] { return Game->On().Windows() == 2; }));
    Take("12-settings");
    Game->On().Press({"Escape"});
}

void Screenshots::Install()
{
    // A folder with other files, and then the one that is proposed.
    Game->Put("mine.txt", "mine");
    PressPrimary();
    Take("20-install-warning");
    Game->On().Press({"Escape"});
    QVERIFY(QFile::remove(Game->Path("mine.txt")));
    PressPrimary();
    Take("21-install");
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/base.MPQ"))
        .Always(Answer::Drip(600, 20));
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 1.MPQ"))
        .Always(Answer::Status(503));
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 2.MPQ"))
        .Always(Answer::Status(404));
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitForTitle("[1-9][0-9].% – " + Name));
    Take("22-downloading");
    QVERIFY(Game->Press(Name, {"F9"}));
    QVERIFY(Game->WaitUntil([&] { return Game->On().Window("%") == 0; }));
    Take("23-paused");
    TakeOpened("24-menu-busy", {"F10"});
}

void Screenshots::Trouble()
{
    // The server fails for a while, and one file is not there.
    QVERIFY(Game->Press(Name, {"F9"}));
    QVERIFY(Game->WaitUntil([&] { return Game->Requests("Data/streamed 1.MPQ") > 6; }));
    Take("30-retrying");
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 1.MPQ"))
        .Always(Answer::Normal());
    QVERIFY(Game->WaitUntil([&] { return Game->On().Window("%") == 0; }));
    Take("31-given-up");
    QVERIFY(Game->Press(Name, {"F10"}));
    Game->On().Press({"Up", "Up", "Up", "Up", "Up", "Return"});
    Take("32-history");
    QVERIFY(Game->Press(Name, {"F10"}));
    Game->On().Press({"Up", "Up", "Up", "Up", "Up", "Return"});
    Game->Server.Script("GET " + Game->Content.ServerPath("Data/streamed 2.MPQ"))
        .Always(Answer::Normal());
}

void Screenshots::Complete()
{
    PressPrimary();
    QVERIFY(Game->WaitForTitle(Name));
    QVERIFY(Game->Has("Data/streamed 2.MPQ"));
    Take("40-complete");
    TakeOpened("41-menu", {"F10"});
}

void Screenshots::Play()
{
    Game->KeepRunning();
    PressPrimary();
    Take("50-login");
    Game->On().Type("me");
    Game->On().Press({"Tab"});
    Game->On().Type("secret");
    Game->On().Press({"Return"});
    QVERIFY(Game->WaitUntil([&] { return Game->Starts() == 1; }));
    Take("51-playing");
    Game->LetGo();
    QVERIFY(Game->WaitForTitle(Name));
}

void Screenshots::Uninstall()
{
    Game->Put("Screenshots/1.jpg", "mine");
    Game->Put("Screenshots/2.jpg", "mine");
    QVERIFY(Game->Press(Name, {"F10"}));
    Game->On().Press({"Up", "Return"});
    Take("60-uninstall");
    Game->On().Press({"Escape"});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::Screenshots)
#include "Screenshots.moc"
