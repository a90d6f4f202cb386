#include "Tests/Install/PluginGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// A build with everything in it.
void AddEverything(SampleContent& p_Content)
{
    p_Content.Add({"World of Warcraft.app/Contents/MacOS/World of Warcraft", "executable", 0x6})
        .Add({QString::fromUtf8("Données/Été 1/Ñandú & co, (1).MPQ"), SampleContent::Bytes(70000),
              0x20})
        .Add({"Data/common.MPQ", SampleContent::Bytes(300000, 2), 0x20})
        .Add({"data/lower case.txt", "lower"})
        .Add({"DATA/UPPER CASE.TXT", "upper"})
        .Add({"Documents/Licence 100%.html", "licence", 0x1})
        .Add({"Interface/settings.lua", "as delivered", 0x80})
        .Add({"special/from the default server", "special", 0x40})
        .Add({"both", "both", 0x3})
        .Add({"empty", ""})
        .Add({"Data/enUS/speech.MPQ", "english", 0x20, "enUS"})
        .Add({"Data/frFR/speech.MPQ", "french", 0x20, "frFR"})
        .Add({"Data/Streamed/tile 1.adt", SampleContent::Bytes(5000, 3), 0, {}, true})
        .Add({"Data/Streamed/tile 2.adt", "tile 2", 0x20, {}, true})
        .Add({"Data/Streamed/fr.adt", "french tile", 0, "frFR", true})
        .Add({"Data/Streamed/en.adt", "english tile", 0, "enUS", true});
}

QStringList Twice(QStringList p_Names)
{
    p_Names += p_Names;
    p_Names.sort();
    return p_Names;
}

} // namespace

class InstallationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FromTheStartToTheFinishedGame();
    void AFrenchLauncherInstallsTheFrenchGame();
    void FromTwoMirrors();
    void AGameThatIsNotInstalledIsOnlyLookedAt();
    void AFolderThatIsCompleteCostsNoTransfer();
    void TheFlagSkipsTheCheckOfTheFolder();
    void ARestartedLauncherLooksAtOrdinaryFilesOnly();
    void AnUpdateFetchesWhatHasChanged();
    void ARepairFetchesJustWhatIsWrong();
    void FilesOfThePlayerStay();
    void AnInterruptedInstallationGoesOnAfterARestart();
    void ABuildWithoutFilesIsInstalledAtOnce();
};

void InstallationTest::FromTheStartToTheFinishedGame()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QCOMPARE(game.App().UISetting.State, 1);
    QVERIFY(game.Install());

    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(ModeOf(game.Path("Documents/Licence 100%.html")), 0444);
    QCOMPARE(ModeOf(game.Path("World of Warcraft.app/Contents/MacOS/World of Warcraft")), 0777);
    QCOMPARE(ModeOf(game.Path("both")), 0777);
    QCOMPARE(game.FilesOnDisk().filter(".part"), QStringList());
    for (char const* const list : {"ToDownloadBase.db", "ToDownload.db"})
        QVERIFY(game.Has(list) && game.Read(list).isEmpty());
    QByteArray const config = game.Read("WTF/Config.wtf");
    QVERIFY2(config.contains("SET locale \"enUS\"") &&
                 config.contains("SET installLocale \"enUS\"") &&
                 config.contains(game.Content.RealmList),
             config.constData());

    QCOMPARE(game.App().UISetting.State, 2);
    QCOMPARE(game.Progress().ModeFlag, false);
    QCOMPARE(game.Progress().StatusText, game.Content.BuildStr);
    QCOMPARE(game.Progress().DetailText, QString(""));
    QCOMPARE(game.Host().StartingCount.load(), 1);
    QCOMPARE(game.Host().FinishedCount.load(), 1);
    QCOMPARE(game.Host().Errors(), QStringList());
    QCOMPARE(game.Host().Setting("pelmora_app.Installed"), QVariant(true));
    QCOMPARE(game.Host().Setting("pelmora_app.InstallFolder").toString(), game.Folder);
    QCOMPARE(game.Host().Setting("pelmora_app.ManifestBuilt"), QVariant(true));
    QCOMPARE(game.Host().Setting("pelmora_app.InstallLocale").toString(), QString("enUS"));
}

void InstallationTest::AFrenchLauncherInstallsTheFrenchGame()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    game.Host().LocaleIndex = 1;
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong("frFR"), QStringList());
    QVERIFY(game.Read("WTF/Config.wtf").contains("SET locale \"frFR\""));
}

void InstallationTest::FromTwoMirrors()
{
    PluginGame game;
    ScriptedServer first(QStringLiteral("127.0.0.2"));
    ScriptedServer second(QStringLiteral("127.0.0.3"));
    AddEverything(game.Content);
    game.Content.Publish(game.Server, {&first, &second});
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requested(), Twice({"special/from the default server"}));
    QVERIFY(!first.Requests().empty());
    QVERIFY(!second.Requests().empty());
}

void InstallationTest::AGameThatIsNotInstalledIsOnlyLookedAt()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QCOMPARE(game.App().UISetting.State, 1);
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(game.FilesOnDisk(), QStringList());
    QCOMPARE(game.Host().Setting("pelmora_app.ManifestBuilt"), QVariant(false));
    QVERIFY(game.Repair());
    QCOMPARE(game.Requested(), QStringList());
}

void InstallationTest::AFolderThatIsCompleteCostsNoTransfer()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    for (SampleFile const& file : game.Content.Files)
        game.Put(file.Path, file.Bytes);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(ModeOf(game.Path("Documents/Licence 100%.html")), 0444); // fixed all the same
    QCOMPARE(game.App().UISetting.State, 2);
}

void InstallationTest::TheFlagSkipsTheCheckOfTheFolder()
{
    PluginGame game;
    game.Content.Add({"checked once", "c", 0x20}).Add({"plain", "p"});
    game.Content.Add({"s", "s", 0, {}, true});
    game.Content.Publish(game.Server);
    game.Put("ToDownloadBase.db", "checked once\n");
    game.Put("ToDownload.db", "s\n");
    QVERIFY(game.Init());
    QVERIFY(game.Install(true));
    QCOMPARE(game.Wrong(), QStringList({"checked once", "s"}));
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
}

void InstallationTest::ARestartedLauncherLooksAtOrdinaryFilesOnly()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    game.Put("Data/common.MPQ", "damaged");
    game.Put("Data/Streamed/tile 1.adt", "damaged");
    game.Put("data/lower case.txt", "damaged");
    game.Restart();
    game.ForgetRequests();
    QVERIFY(game.Init());
    QCOMPARE(game.Requested(), Twice({"data/lower case.txt"}));
    QCOMPARE(game.Wrong(), QStringList({"Data/common.MPQ", "Data/Streamed/tile 1.adt"}));
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
}

void InstallationTest::AnUpdateFetchesWhatHasChanged()
{
    PluginGame game;
    game.Content.Add({"same", "same"}).Add({"changed", "old"}).Add({"removed", "removed"});
    game.Content.Add({"checked once", "old", 0x20}).Add({"s", "old", 0, {}, true});
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.Wrong(), QStringList());

    game.Content.Build = "build_2";
    game.Content.BuildStr = "Second build";
    game.Content.Files.clear();
    game.Content.Add({"same", "same"}).Add({"changed", "new"}).Add({"added", "added"});
    game.Content.Add({"checked once", "new", 0x20}).Add({"s", "new", 0, {}, true});
    game.Content.Publish(game.Server);
    game.Restart();
    QVERIFY(game.Init());
    QCOMPARE(game.Progress().StatusText, QString("Second build"));
    QCOMPARE(game.Requested(), Twice({"added", "changed"}));
    // What a later build trusts to its lists is brought up to date by a repair.
    QCOMPARE(game.Wrong(), QStringList({"checked once", "s"}));
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Read("removed"), QByteArray("removed"));
    QCOMPARE(game.Host().Errors(), QStringList());
}

void InstallationTest::ARepairFetchesJustWhatIsWrong()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    game.Put("Data/common.MPQ", SampleContent::Bytes(300000, 9));
    game.Put("Data/Streamed/tile 2.adt", "");
    QVERIFY(QFile::remove(game.Path("Documents/Licence 100%.html")));
    game.ForgetRequests();
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Requested(),
             Twice({"Data/Streamed/tile 2.adt", "Data/common.MPQ", "Documents/Licence 100%.html"}));
    QCOMPARE(ModeOf(game.Path("Documents/Licence 100%.html")), 0444);
}

void InstallationTest::FilesOfThePlayerStay()
{
    PluginGame game;
    AddEverything(game.Content);
    game.Content.Publish(game.Server);
    game.Put("Interface/settings.lua", "the player's");
    game.Put("Screenshots/1.jpg", "a picture");
    game.Put("WTF/Config.wtf", "SET gxApi \"opengl\"\nSET locale \"frFR\"\n");
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList("Interface/settings.lua"));
    QCOMPARE(game.Read("Interface/settings.lua"), QByteArray("the player's"));
    QCOMPARE(game.Read("Screenshots/1.jpg"), QByteArray("a picture"));
    QByteArray const config = game.Read("WTF/Config.wtf");
    QVERIFY2(config.contains("SET gxApi \"opengl\"") && config.contains("SET locale \"enUS\"") &&
                 !config.contains("frFR"),
             config.constData());
}

void InstallationTest::AnInterruptedInstallationGoesOnAfterARestart()
{
    PluginGame game;
    QByteArray const bytes = SampleContent::Bytes(60000);
    game.Content.Add({"a", bytes, 0x20}).Add({"b", "b", 0x20}).Add({"c", "c"});
    game.Content.Publish(game.Server);
    QString const path = game.Content.ServerPath("a");
    game.Server.Script(path).Then(Answer::Normal()).Then(Answer::SilentAfter(25000));
    QVERIFY(game.Init());
    game.App().Install(game.Folder, false);
    QVERIFY(game.Host().RunUntil([&] { return game.Read("a.part").size() == 25000; }));
    game.App().SuspendDownload();
    QCOMPARE(game.Progress().Mode, 4);
    QVERIFY(game.Finish());

    game.Restart();
    QVERIFY(game.Init());
    QCOMPARE(game.Read("b"), QByteArray("b"));
    QCOMPARE(game.Read("c"), QByteArray("c"));
    // The stopped file was struck from its list: a repair finds it, and its part is continued.
    QVERIFY(!game.Has("a"));
    QVERIFY(game.Repair());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Server.Requests(path).back().Header("Range"), QByteArray("bytes=25000-"));
}

void InstallationTest::ABuildWithoutFilesIsInstalledAtOnce()
{
    PluginGame game;
    game.Content.Publish(game.Server);
    QVERIFY(game.Init());
    QVERIFY(game.Install());
    QCOMPARE(game.App().UISetting.State, 2);
    QCOMPARE(game.Requested(), QStringList());
    QCOMPARE(game.Host().Errors(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::InstallationTest)
#include "tst_Installation.moc"
