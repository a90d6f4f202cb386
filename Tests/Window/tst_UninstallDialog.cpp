#include "Host/Window/Dialogs/UninstallDialog.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/DialogGame.hpp"

#include <QAbstractButton>
#include <QListWidget>

namespace Varnholt::TestSupport {

/// What goes and what stays, told before it goes.
class UninstallDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FilesBytesAndWhatStaysAreShown();
    void TheFilesGoAndTheDialogToo();
    void TheFilesCanStay();
    void ItCanBeCancelledBeforeTheFirstRemoval();
    void WithoutAServerTheInstallationCanBeForgotten();

private:
    static bool Open(DialogGame& p_Game)
    {
        if (!p_Game.Open())
            return false;
        p_Game.Show(new Host::UninstallDialog(p_Game.Controller()));
        return true;
    }
    static bool IsReady(DialogGame& p_Game)
    {
        return p_Game.WaitUntil([&] { return p_Game.Offers("Uninstall"); });
    }
};

void UninstallDialogTest::FilesBytesAndWhatStaysAreShown()
{
    DialogGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("shots/1.jpg", "mine");
    QVERIFY(Open(game));
    QVERIFY(!game.Offers("Uninstall"));
    QVERIFY(IsReady(game));
    QVERIFY(game.Button("Delete the game: 6 files (106.5 KiB)"));
    auto* const staying = game.Dialog->findChild<QListWidget*>();
    QVERIFY(staying->isVisible());
    QCOMPARE(staying->item(0)->text(), QString("shots/1.jpg"));
    QVERIFY(game.Has("readme.txt"));
}

void UninstallDialogTest::TheFilesGoAndTheDialogToo()
{
    DialogGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("shots/1.jpg", "mine");
    QVERIFY(Open(game));
    QVERIFY(IsReady(game));
    game.Button("Uninstall")->click();
    QVERIFY(!game.Offers("Uninstall"));
    QVERIFY(game.WaitUntil([&] { return game.Dialog->result() == QDialog::Accepted; }));
    QVERIFY(game.Has("shots/1.jpg") && !game.Has("readme.txt"));
}

void UninstallDialogTest::TheFilesCanStay()
{
    DialogGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(Open(game));
    QVERIFY(IsReady(game));
    game.Button("Keep all files")->click();
    game.Button("Uninstall")->click();
    QVERIFY(game.WaitUntil([&] { return game.Dialog->result() == QDialog::Accepted; }));
    QCOMPARE(game.Wrong("enUS"), QStringList());
    QVERIFY(game.WaitUntil([&] { return !game.Controller().State().Status->IsInstalled; }));
}

void UninstallDialogTest::ItCanBeCancelledBeforeTheFirstRemoval()
{
    DialogGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(Open(game));
    QVERIFY(IsReady(game));
    game.Server.Script("GET " + game.Content.VersionPath()).Always(Answer::SilentAfter(0));
    game.Button("Uninstall")->click();
    QVERIFY(game.WaitUntil(
        [&] { return game.Controller().State().Snapshot.Phase == Host::RunPhase::Connecting; }));
    game.Button("Cancel")->click();
    QVERIFY(game.WaitUntil([&] { return !game.Controller().IsBusy(); }));
    QCOMPARE(game.Ended.back().Kind, Host::RunRequest::Type::Uninstall);
    QCOMPARE(game.Results.back().Problem->Kind, Host::FailureKind::Interrupted);
    QCOMPARE(game.Wrong("enUS"), QStringList());
}

void UninstallDialogTest::WithoutAServerTheInstallationCanBeForgotten()
{
    DialogGame game;
    game.AddFiles().PutInstalled();
    QVERIFY(Open(game));
    QVERIFY(game.WaitUntil([&] { return game.Offers("Try again"); }));
    QVERIFY(!game.Button("Delete the game's files")->isEnabled());
    QVERIFY(game.Offers("Keep all files") && game.Offers("Uninstall"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::UninstallDialogTest)
#include "tst_UninstallDialog.moc"
