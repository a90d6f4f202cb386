#include "Host/Window/Dialogs/InstallDialog.hpp"
#include "Tests/Host/FolderListing.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/DialogGame.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace Varnholt::TestSupport {

/// What is told of an installation before it begins.
class InstallDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SizesAndRoomAreShownAndNothingIsCreated();
    void AnInstallationThatIsAgreedToBegins();
    void AFolderWithOtherFilesAsksOrGetsOneInside();
    void TooLittleRoomForbids();
    void AnotherLanguageChangesTheSize();
    void OnlyTheLatestFolderCounts();
    void AServerThatDoesNotAnswerIsTold();
    void OneThatIsCancelledLeavesTheGameIdle();

private:
    static Host::InstallDialog* Open(DialogGame& p_Game, QString const& p_Folder)
    {
        auto* const dialog = new Host::InstallDialog(p_Game.Controller(), p_Folder);
        p_Game.Show(dialog);
        return dialog;
    }
};

void InstallDialogTest::SizesAndRoomAreShownAndNothingIsCreated()
{
    DialogGame game;
    game.AddFiles().Publish();
    game.Options.FreeBytes = [](QString const&) { return 1024 * 1024; };
    QVERIFY(game.Open());
    QStringList const before = FolderListing(game.Base);
    Open(game, game.Folder);
    QVERIFY(!game.Offers("Install"));
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install"); }));
    QString const texts = game.Texts();
    QVERIFY2(texts.contains("6 files (106.5 KiB)") && texts.contains("1.0 MiB") &&
                 texts.contains("917.5 KiB"),
             qPrintable(texts));
    QVERIFY(!game.Button("Install here") && !game.Button("Use the folder"));
    QCOMPARE(FolderListing(game.Base), before);
}

void InstallDialogTest::AnInstallationThatIsAgreedToBegins()
{
    DialogGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    Host::InstallDialog* const dialog = Open(game, game.Folder);
    connect(dialog, &QDialog::accepted, this, [&] { game.Controller().Start(dialog->Request()); });
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install"); }));
    game.Button("Install")->click();
    QVERIFY(game.WaitUntil([&] { return game.Ended.size() == 2; }));
    QVERIFY(!game.Results[1].Problem);
    QCOMPARE(game.Wrong("enUS"), QStringList());
}

void InstallDialogTest::AFolderWithOtherFilesAsksOrGetsOneInside()
{
    DialogGame game;
    game.AddFiles().Publish();
    game.Put("mine.txt", "mine");
    QVERIFY(game.Open());
    Host::InstallDialog* const dialog = Open(game, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install here"); }));
    QVERIFY(!game.Offers("Install"));
    qobject_cast<QCheckBox*>(game.Button("Install here"))->setChecked(true);
    QVERIFY(game.Offers("Install") && dialog->Request().Confirmed);
    game.Button("Use the folder")->click();
    QVERIFY(game.WaitUntil([&] { return !game.Button("Install here") && game.Offers("Install"); }));
    QCOMPARE(dialog->Request().Argument, game.Folder + "Mists of Pandaria");
    QVERIFY(!dialog->Request().Confirmed);
}

void InstallDialogTest::TooLittleRoomForbids()
{
    DialogGame game;
    game.AddFiles().Publish();
    game.Options.FreeBytes = [](QString const&) { return 1000; };
    QVERIFY(game.Open());
    Open(game, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Texts().contains("too little room"); }));
    QVERIFY(!game.Offers("Install") && !game.Button("Install here"));
}

void InstallDialogTest::AnotherLanguageChangesTheSize()
{
    DialogGame game;
    game.AddFiles();
    game.Content.Files[3].Bytes = SampleContent::Bytes(50000); // the French one
    game.Publish();
    QVERIFY(game.Open());
    Host::InstallDialog* const dialog = Open(game, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install"); }));
    auto* const languages = dialog->findChild<QComboBox*>();
    QCOMPARE(languages->currentText(), QString("English"));
    languages->setCurrentText("French");
    Q_EMIT languages->activated(languages->currentIndex());
    QVERIFY(game.WaitUntil([&] { return game.Texts().contains("153.3 KiB"); }));
    QCOMPARE(languages->currentText(), QString("French"));
    QVERIFY(game.Offers("Install"));
}

void InstallDialogTest::OnlyTheLatestFolderCounts()
{
    DialogGame game;
    game.AddFiles().Publish();
    QVERIFY(WriteFile(game.Base + "full/mine.txt", "mine"));
    QVERIFY(game.Open());
    Host::InstallDialog* const dialog = Open(game, game.Base + "full");
    auto* const folder = dialog->findChild<QLineEdit*>();
    folder->setText(game.Base + "other");
    Q_EMIT folder->textEdited(folder->text());
    QVERIFY(!game.Offers("Install"));
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install"); }));
    QVERIFY(!game.Texts().contains("not empty"));
    QCOMPARE(dialog->Request().Argument, game.Base + "other");
    folder->setText("relative");
    Q_EMIT folder->textEdited(folder->text());
    QVERIFY(!game.Offers("Install"));
}

void InstallDialogTest::AServerThatDoesNotAnswerIsTold()
{
    DialogGame game;
    game.AddFiles();
    QVERIFY(game.Open());
    Open(game, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Offers("Try again"); }));
    QVERIFY2(game.Texts().contains("The server does not give"), qPrintable(game.Texts()));
    QVERIFY(!game.Offers("Install"));
    game.Publish();
    game.Button("Try again")->click();
    QVERIFY(game.WaitUntil([&] { return game.Offers("Install"); }));
}

void InstallDialogTest::OneThatIsCancelledLeavesTheGameIdle()
{
    DialogGame game;
    game.AddFiles().Publish();
    game.Server.Script("GET " + game.Content.VersionPath()).Always(Answer::SilentAfter(0));
    QVERIFY(game.Open());
    Open(game, game.Folder);
    QVERIFY(game.WaitUntil([&] { return game.Controller().IsBusy(); }));
    game.Dialog.reset();
    QVERIFY(game.WaitUntil([&] { return !game.Controller().IsBusy(); }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::InstallDialogTest)
#include "tst_InstallDialog.moc"
