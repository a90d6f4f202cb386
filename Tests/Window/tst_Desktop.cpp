#include "Host/Window/Desktop/TrayIcon.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/NotificationService.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <QScreen>
#include <QSignalSpy>
#include <QtEndian>

namespace Varnholt::TestSupport {

using Host::RunPhase;
using Host::TrayIcon;
using Type = Host::RunRequest::Type;

/// The window as a part of the desktop.
class DesktopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheWindowComesBackWhereItWas();
    void AScreenThatHasBecomeSmallerHasRoomForIt_data();
    void AScreenThatHasBecomeSmallerHasRoomForIt();
    void ClosingEndsItUnlessItStaysInTheTray_data();
    void ClosingEndsItUnlessItStaysInTheTray();
    void TheTrayBringsItBackAndEndsIt();
    void ItStartsMinimised_data();
    void ItStartsMinimised();
    void TheEndOfADownloadIsNotifiedToWhoLooksElsewhere();
    void TheTitleTellsHowFarItIs();

private:
    SecretService Bus; ///< of this process from now on
};

void DesktopTest::TheWindowComesBackWhereItWas()
{
    WindowGame game;
    game.OpenOnDesktop(false);
    QRect const place(30, 40, game.Window().minimumSizeHint().width() + 10, 550);
    game.Window().setGeometry(place);
    QCOMPARE(game.Window().geometry(), place);
    game.Close();
    game.OpenOnDesktop(false);
    QCOMPARE(game.Window().geometry(), place);
}

void DesktopTest::AScreenThatHasBecomeSmallerHasRoomForIt_data()
{
    QTest::addColumn<int>("screenWidth");
    AddRow("much smaller", 3840);
    AddRow("a little", QGuiApplication::primaryScreen()->size().width() + 1);
}

void DesktopTest::AScreenThatHasBecomeSmallerHasRoomForIt()
{
    QFETCH(int, screenWidth);
    constexpr int c_Width = 46; // of the screen, in what QWidget::saveGeometry gives

    WindowGame game;
    QRect const screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget large;
    large.setGeometry(screen.width(), screen.height(), 2'000, 1'400);
    QByteArray geometry = large.saveGeometry();
    qToBigEndian<qint32>(screenWidth, geometry.data() + c_Width);
    game.SetSetting("window/geometry", QString::fromLatin1(geometry.toBase64()));
    game.OpenOnDesktop(false);
    QRect const place = game.Window().geometry();
    QCOMPARE(place.size(), place.size().boundedTo(screen.size()));
    QVERIFY2(screen.contains(place.topLeft()), QTest::toString(place));
}

void DesktopTest::ClosingEndsItUnlessItStaysInTheTray_data()
{
    QTest::addColumn<bool>("hasTray");
    QTest::addColumn<bool>("isChosen");
    QTest::addColumn<bool>("goesOn");
    AddRow("not chosen", true, false, false);
    AddRow("chosen", true, true, true);
    AddRow("no tray", false, true, false);
}

void DesktopTest::ClosingEndsItUnlessItStaysInTheTray()
{
    QFETCH(bool, hasTray);
    QFETCH(bool, isChosen);
    QFETCH(bool, goesOn);
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.SetSetting("window/stay-in-tray", isChosen);
    game.OpenOnDesktop(hasTray);
    game.Install();
    QVERIFY(
        game.WaitUntil([&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
    game.Window().close();
    QVERIFY(!game.Window().isVisible());
    if (!goesOn) {
        QVERIFY(game.WaitUntil([&] { return game.IsFinished(); }));
        return;
    }
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
    QVERIFY(!game.IsFinished());
    QCOMPARE(game.Wrong(), QStringList());
}

void DesktopTest::TheTrayBringsItBackAndEndsIt()
{
    WindowGame game;
    game.SetSetting("window/stay-in-tray", true);
    game.OpenOnDesktop(true);
    game.Window().close();
    auto* const tray = game.Desktop().findChild<TrayIcon*>();
    Q_EMIT tray->ShowRequested();
    QVERIFY(game.Window().isVisible());
    Q_EMIT tray->QuitRequested();
    QVERIFY(game.WaitUntil([&] { return game.IsFinished(); }));
}

void DesktopTest::ItStartsMinimised_data()
{
    QTest::addColumn<bool>("staysInTray");
    AddRow("into the tray", true);
    AddRow("into the list of windows", false);
}

void DesktopTest::ItStartsMinimised()
{
    QFETCH(bool, staysInTray);
    WindowGame game;
    game.SetSetting("window/start-minimised", true);
    game.SetSetting("window/stay-in-tray", staysInTray);
    game.OpenOnDesktop(true);
    QCOMPARE(game.Window().isVisible(), !staysInTray);
    QCOMPARE(game.Window().isMinimized(), !staysInTray);
    game.Desktop().ShowWindow();
    QVERIFY(game.Window().isVisible() && !game.Window().isMinimized());
}

void DesktopTest::TheEndOfADownloadIsNotifiedToWhoLooksElsewhere()
{
    NotificationService service;
    QVERIFY(service.Register());
    WindowGame game;
    game.AddFiles().Publish();
    game.SetSetting("window/start-minimised", true);
    game.OpenOnDesktop(false);
    QWidget other; // has the keyboard
    other.show();
    game.Install();
    QVERIFY(game.WaitUntil([&] { return !service.All.empty(); }));
    QCOMPARE(service.All[0].Title, QString("Mists of Pandaria"));
    QVERIFY2(service.All[0].Text.startsWith("The game is complete: "),
             qPrintable(service.All[0].Text));
    QByteArray const whole = game.Read("readme.txt");
    for (bool const notifies : {false, true}) { // the first of these finds damage, and is not told
        game.Put("readme.txt", notifies ? whole : QByteArray("damaged"));
        game.SetSetting("window/notify", notifies);
        game.Close();
        game.OpenOnDesktop(false);
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QSignalSpy const ended(&game.Controller(), &Host::GameController::RunEnded);
        game.Controller().Start(Type::Verify);
        QVERIFY(game.WaitUntil([&] { return !ended.isEmpty(); }));
    }
    QVERIFY(game.WaitUntil([&] { return service.All.size() > 1; }));
    QCOMPARE(service.All[1].Text, QString("Every file of the game is right."));
    // The number of the notification may still be on its way.
    QVERIFY(game.WaitUntil([&] {
        Q_EMIT service.ActionInvoked(NotificationService::c_Id, "default");
        return !game.Window().isMinimized();
    }));
}

void DesktopTest::TheTitleTellsHowFarItIs()
{
    QString const name = "Mists of Pandaria";
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 30'000);
    game.OpenOnDesktop(false);
    QCOMPARE(game.Window().windowTitle(), name);
    game.Install();
    QRegularExpression const progress("^[1-9][0-9] % – " + name + '$');
    QVERIFY(game.WaitUntil([&] { return progress.match(game.Window().windowTitle()).hasMatch(); }));
    game.Controller().Pause();
    QCOMPARE(game.Window().windowTitle(), "Paused – " + name);
    game.Server.OpenGate(gate);
    game.Controller().Continue();
    QVERIFY(game.WaitUntil([&] { return game.Window().windowTitle() == name; }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DesktopTest)
#include "tst_Desktop.moc"
