#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// What the host does with one module it does with each: it knows no game.
class HostInventedModuleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EachJobServesAnotherGame();
};

void HostInventedModuleTest::EachJobServesAnotherGame()
{
    SessionGame game;
    game.Options.ModuleFile = QStringLiteral(VARNHOLT_INVENTED_MODULE);
    game.Content.AppId = "lantern_app";
    game.AddFiles();
    game.Content.Add({"Lantern", "#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$0.args\"\n",
                      PlayedGame::c_ExecutableFlags});
    game.Content.Add({"login/screen.txt.model", "name and word"});
    game.Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Info->Name, QString("Lantern Coast"));
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(!game.Has("WTF/Config.wtf"));
    for (QString const& key : game.SettingKeys())
        QVERIFY2(key.startsWith("lantern_app.") || key.startsWith("host/lantern_app/"),
                 qPrintable(key));
    for (RequestType const kind : {RequestType::Update, RequestType::Check, RequestType::Verify,
                                   RequestType::Repair, RequestType::ListLocales})
        QCOMPARE(game.Run(kind), QString("done"));
    QCOMPARE(game.Run(RequestType::ChooseLocale, "frFR"), QString("done"));
    QCOMPARE(game.Setting("lantern_app.InstallLocale").toString(), QString("frFR"));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));

    Host::RunRequest request;
    request.Kind = RequestType::Play;
    request.Argument = "me";
    request.Password = "word";
    QCOMPARE(game.Run(request), QString("done"));
    QCOMPARE(game.Notices, QStringList());
    QVERIFY(game.Result().OutputFile.endsWith("host.lantern_app.log"));
    QVERIFY(game.Has("login/screen.txt"));
    QCOMPARE(game.Read("Lantern.args"), QByteArray("--lit\n"));
    QVERIFY(QFile::remove(game.Path("Lantern.args")));

    request.Kind = RequestType::Uninstall;
    request.DeletesFiles = true;
    QCOMPARE(game.Run(request), QString("done"));
    QCOMPARE(game.FilesOnDisk(), QStringList("settings/lantern.conf"));
    for (QString const& key : game.SettingKeys())
        QVERIFY2(key == "lantern_app.ManifestBuilt", qPrintable(key));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostInventedModuleTest)
#include "tst_HostInventedModule.moc"
