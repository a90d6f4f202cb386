#include "Host/Window/Pages/GameColumn.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Host/Window/Pages/HistoryView.hpp"
#include "Host/Window/Pages/PageMenu.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QScreen>
#include <QSignalSpy>

namespace Varnholt::TestSupport {

using Host::PageCommand;
using Host::RunPhase;
using Type = Host::RunRequest::Type;

/// The window on a server, pressed as a user does.
class MainWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AGameIsInstalledPausedAndContinued();
    void AStoppedInstallationIsContinued();
    void AServerThatFailsIsWaitedForAndTold();
    void ABusyServerIsToldAsOne();
    void GivenUpFilesAreListedAndTriedAgain();
    void DamageIsFoundAndRepaired();
    void ThePageTellsThatTheGameRuns();
    void ThePageTellsThatAnotherProgramIsAtWork();
    void AnotherProgramIsRefusedWhileTheWindowIsAtWork();
    void AnAccountIsForgottenFromTheMenu();
    void ADroppedModuleAppears();
    void AGameIsNotLeftDuringAJob();
    void LanguagesAreAskedForAndChosen();
    void ADiagnosisIsCopied();
};

void MainWindowTest::AGameIsInstalledPausedAndContinued()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    QCOMPARE(game.Primary(), QString("Install"));
    game.Install();
    QVERIFY(game.WaitForPrimary("Installing"));
    QVERIFY(!game.PrimaryButton().isEnabled());
    QVERIFY(
        game.WaitUntil([&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
    QCOMPARE(game.Text("headline"), QString("Downloading base files"));
    QCOMPARE(game.Text("file"), QString("Data/base.MPQ"));

    game.Button("Pause").click();
    QVERIFY(game.WaitUntil([&] { return game.Text("headline") == "Paused"; }));
    QCOMPARE(game.Primary(), QString("Continue"));
    game.Server.OpenGate(gate);
    game.Press();
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Text("idle").contains("build_1"));
}

void MainWindowTest::AStoppedInstallationIsContinued()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    game.Install();
    QVERIFY(
        game.WaitUntil([&] { return game.State().Snapshot.Phase == RunPhase::DownloadingBase; }));
    game.Page().Menu().ActionOf(PageCommand::Stop)->trigger();
    QVERIFY(game.WaitForPrimary("Continue"));
    QVERIFY(!game.State().Problem);
    game.Server.OpenGate(gate);
    game.Press();
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(game.Wrong(), QStringList());
}

void MainWindowTest::AServerThatFailsIsWaitedForAndTold()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.Server.Script(game.Content.ServerPath("readme.txt")).Always(Answer::ClosedBeforeHeaders());
    game.Open();
    game.Install();
    QVERIFY(game.WaitUntil(
        [&] { return game.Text("stripTitle") == "Connection closed before the end"; }));
    QVERIFY2(game.Text("stripText").contains("Attempt "), qPrintable(game.Text("stripText")));
    QCOMPARE(game.Primary(), QString("Installing"));
}

void MainWindowTest::ABusyServerIsToldAsOne()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Server.Script("GET " + game.Content.ServerPath("readme.txt"))
        .Always(Answer::Status(503).With("Retry-After", "20"));
    game.Open();
    game.Install();
    QVERIFY(game.WaitUntil([&] {
        return QFileInfo(game.Path("Data/base.MPQ.part")).size() == 1'000 &&
               game.Server.ScriptedAnswers("GET " + game.Content.ServerPath("readme.txt")) > 0;
    }));
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitUntil([&] { return !game.Text("stripTitle").isEmpty(); }));
    QCOMPARE(game.Text("stripTitle"), QString("HTTP status 503"));
}

void MainWindowTest::GivenUpFilesAreListedAndTriedAgain()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const bad = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + bad).Always(Answer().Body(SampleContent::Bytes(60'000, 99)));
    game.Open();
    game.Install();
    QVERIFY(game.WaitForPrimary("Try again"));
    QCOMPARE(game.State().Problem->Kind, Host::FailureKind::FilesGivenUp);
    game.Server.ClearScript("GET " + bad);
    game.Button("Try again").click();
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(game.Wrong(), QStringList());
}

void MainWindowTest::DamageIsFoundAndRepaired()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    game.Put("Data/base.MPQ", SampleContent::Bytes(60'000, 99));
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    game.Page().Menu().ActionOf(PageCommand::Check)->trigger();
    QVERIFY(game.WaitUntil([&] { return game.State().Problem.has_value(); }));
    QCOMPARE(game.State().Problem->Kind, Host::FailureKind::FilesWrong);
    game.Button("Repair").click();
    QVERIFY(game.WaitForPrimary("Repairing"));
    QVERIFY(game.WaitForPrimary("Play"));
    QVERIFY(!game.State().Problem);
    QCOMPARE(game.Wrong(), QStringList());
}

void MainWindowTest::ThePageTellsThatTheGameRuns()
{
    PlayedWindowGame game;
    game.KeepRunning();
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    game.Controller().Start(Type::Play);
    QVERIFY(game.WaitForPrimary("Playing"));
    QVERIFY(!game.PrimaryButton().isEnabled());
    QVERIFY(game.Text("idle").startsWith("The game runs"));
    game.LetGo();
    QVERIFY(game.WaitForPrimary("Play"));
    QVERIFY(!game.State().Problem);
}

void MainWindowTest::ThePageTellsThatAnotherProgramIsAtWork()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    HostProcess const other(game, {"repair"});
    QVERIFY(game.WaitForPrimary("In use"));
    QVERIFY(!game.PrimaryButton().isEnabled());
    QVERIFY(game.Text("idle").startsWith("Another program is at work here"));
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
}

void MainWindowTest::AnotherProgramIsRefusedWhileTheWindowIsAtWork()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    game.Install();
    QVERIFY(game.WaitUntil([&] { return QFileInfo(game.Path("Data/base.MPQ.part")).size() > 0; }));
    Outcome const outcome = HostProcess(game, {"-q", "update"}).Finish();
    QCOMPARE(outcome.Err,
             QString("varnholt-host: another program works in the folder %1 (%2, process %3 on "
                     "%4); wait for it to end, then try again.\n")
                 .arg(game.Folder, QCoreApplication::applicationName())
                 .arg(QCoreApplication::applicationPid())
                 .arg(QSysInfo::machineHostName()));
    QCOMPARE(outcome.Status, 8);
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(game.Wrong(), QStringList());
}

void MainWindowTest::AnAccountIsForgottenFromTheMenu()
{
    WindowGame game;
    game.AddFiles().Publish().PutInstalled();
    game.SetSetting("window/login-pelmora_app/asks", false); // Play would start the game at once
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    QAction* const account = game.Page().Menu().ActionOf(PageCommand::ChangeAccount);
    QVERIFY(account->isEnabled());
    account->trigger();
    QDialog* dialog = nullptr;
    QVERIFY(game.WaitUntil(
        [&] { return (dialog = game.Window().findChild<QDialog*>("LoginDialog")) != nullptr; }));
    for (auto* const button : dialog->findChildren<QPushButton*>())
        if (button->text() == "&Forget")
            button->click();
    QVERIFY(!dialog->isVisible());
    QVERIFY(game.WaitUntil([&] { return game.Setting("window/login-pelmora_app/asks").isNull(); }));
    QVERIFY(!game.Controller().IsBusy());
}

void MainWindowTest::ADroppedModuleAppears()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.Open();
    auto& column = *game.Window().findChild<Host::GameColumn*>();
    QCOMPARE(column.findChildren<QAbstractButton*>().size(), 1);
    // No module yet, as one that is still being copied.
    QVERIFY(WriteFile(game.Base + "modules/libHalf.so", "half a module"));
    game.DropModule(QStringLiteral(VARNHOLT_INVENTED_MODULE));
    QVERIFY(game.WaitUntil([&] { return column.findChildren<QAbstractButton*>().size() == 2; }));
    auto* const button = column.findChildren<QAbstractButton*>().last();
    QCOMPARE(button->accessibleName(), QString("Lantern Coast"));
    button->click();
    QVERIFY(game.WaitUntil([&] { return game.State().Status.has_value(); }));
    QCOMPARE(game.Page().Card().Name, QString("Lantern Coast"));
    QVERIFY(button->isChecked());
    QCOMPARE(game.Text("name"), QString("Lantern Coast"));
    // Its colours are those of the dialogs too; and the screen is a small one.
    QCOMPARE(QApplication::palette().color(QPalette::Highlight), game.Page().Card().Palette.Accent);
    QVERIFY(game.Window().width() <= game.Window().screen()->availableSize().width());
}

void MainWindowTest::AGameIsNotLeftDuringAJob()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.HoldContent("Data/base.MPQ", 1'000);
    game.DropModule(QStringLiteral(VARNHOLT_INVENTED_MODULE));
    game.Open();
    auto const buttons =
        game.Window().findChild<Host::GameColumn*>()->findChildren<QAbstractButton*>();
    QCOMPARE(buttons.size(), 2);
    if (game.Page().Card().Name != "Mists of Pandaria") {
        for (auto* const button : buttons)
            if (button->accessibleName() == "Mists of Pandaria")
                button->click();
        QVERIFY(game.WaitUntil([&] { return game.State().Status.has_value(); }));
    }
    game.Install();
    for (auto* const button : buttons)
        button->click();
    QCOMPARE(game.Page().Card().Name, QString("Mists of Pandaria"));
    QVERIFY(game.Text("stripTitle").startsWith("Mists of Pandaria is being worked on."));
    for (auto* const button : buttons)
        QCOMPARE(button->isChecked(), button->accessibleName() == "Mists of Pandaria");
}

void MainWindowTest::LanguagesAreAskedForAndChosen()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    QMenu& languages = *game.Page().Menu().ActionOf(PageCommand::ChooseLanguage)->menu();
    languages.aboutToShow();
    QVERIFY(game.WaitUntil([&] { return languages.actions().size() == 2; }));
    QCOMPARE(languages.actions()[0]->text(), QString("English"));
    QVERIFY(languages.actions()[0]->isChecked());
    languages.actions()[1]->trigger();
    QVERIFY(game.WaitUntil([&] { return game.State().Status->Locale == "frFR"; }));
}

void MainWindowTest::ADiagnosisIsCopied()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    game.Open();
    QVERIFY(game.WaitForPrimary("Play"));
    QSignalSpy const ended(&game.Controller(), &Host::GameController::RunEnded);
    game.Controller().Start(Type::Verify);
    QVERIFY(game.WaitUntil([&] { return !ended.isEmpty(); }));
    game.Page().Menu().ActionOf(PageCommand::CopyDiagnosis)->trigger();
    QString const text = QApplication::clipboard()->text();
    for (QString const& part : {QString("pelmora_app"), game.Folder, QString("build_1"),
                                QString("Every file of the game is right.")})
        QVERIFY2(text.contains(part), qPrintable(text));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::MainWindowTest)
#include "tst_MainWindow.moc"
