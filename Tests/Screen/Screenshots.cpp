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

private:
    void Begin();
    void Install();
    void Trouble();
    void Complete();
    void Play();
    void Uninstall();

    void Take(QString const& p_State);
    /// Opens something by keys, shows it, closes it by Escape.
    void TakeOpened(QString const& p_State, QStringList const& p_Keys);

    QString Prefix;
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
    Begin();
    Install();
    Trouble();
    Complete();
    Play();
    Uninstall();
    Game.reset();
}

void Screenshots::Take(QString const& p_State)
{
    QImage const picture = Game->On().StillPicture();
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

void Screenshots::Begin()
{
    QVERIFY(Game->Open());
    Game->On().Resize(Game->On().Window(Name), Size);
    Take("1-new");
    TakeOpened("2-menu", {"F10"});
}

void Screenshots::Install() {}
void Screenshots::Trouble() {}
void Screenshots::Complete() {}
void Screenshots::Play() {}
void Screenshots::Uninstall() {}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::Screenshots)
#include "Screenshots.moc"
