#include "Launcher/Application/ApplicationManifest.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::ContentPlatform;
using Publisher::PublicationSummary;

namespace {

/// The published base files' paths.
QStringList BasePaths(PublishedGame const& p_Game)
{
    QJsonDocument const manifest =
        QJsonDocument::fromJson(p_Game.Read("pelmora_app/builds/build_1/info.json"));
    QStringList paths;
    for (auto const& file : manifest["content"]["base_mac"].toArray())
        paths += file.toObject()["path"].toString();
    return paths;
}

} // namespace

class PublicationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PublishesExactlyThisTree();
    void ListsFilesInTheOrderOfTheirBytes();
    void ModesDoNotDependOnTheUmask_data();
    void ModesDoNotDependOnTheUmask();
    void TheListsStayUnlessTheyAreGiven();
    void TheDevelopmentChannelHasAVersionFileOfItsOwn();
    void ABuildSharesContentWithEarlierOnes();
    void EqualFilesAreStoredOnce();
    void ABuildCanBePublishedAgainAsItIs();
    void ExcludedFilesAreNotPublished();
    void WindowsClientsGetTheirOwnListAndFlag();
    void FilesOfOthersInTheOutputFolderStay();
    void WarnsOfAGameThatClientsCannotStart();
};

void PublicationTest::PublishesExactlyThisTree()
{
    PublishedGame game;
    game.Put("Data/empty", "");
    game.Options.Hosts = QStringList({"a.example", "b.example:8080"});
    game.Options.RealmListAddress = "logon.example.net";
    PublicationSummary const summary = game.Publish();
    QCOMPARE(game.Published(),
             (Tree{
                 {"cdns.info", "a.example b.example:8080"},
                 {"pelmora_app/", {}},
                 {"pelmora_app/version.json", "{\"build\":\"build_1\"}"},
                 {"pelmora_app/realmlist.info", "SET realmlist \"logon.example.net\""},
                 {"pelmora_app/builds/", {}},
                 {"pelmora_app/builds/build_1/", {}},
                 {"pelmora_app/builds/build_1/info.json",
                  "{\"available_locales\":[],\"build_id\":\"build_1\",\"build_number\":1,"
                  "\"build_str\":\"Build 1\",\"content\":{\"base_mac\":["
                  "{\"location\":\"files/D4/D41D8CD98F00B204E9800998ECF8427E\","
                  "\"md5\":\"D41D8CD98F00B204E9800998ECF8427E\",\"path\":\"Data/empty\"},"
                  "{\"flags\":6,\"location\":\"files/51/51FA1DB0EC7C4AF52D93A6F5D0E86BC5\","
                  "\"md5\":\"51FA1DB0EC7C4AF52D93A6F5D0E86BC5\",\"path\":\"Game\"}]},"
                  "\"streamed_content\":[]}"},
                 {"pelmora_app/files/", {}},
                 {"pelmora_app/files/D4/", {}},
                 {"pelmora_app/files/D4/D41D8CD98F00B204E9800998ECF8427E", ""},
                 {"pelmora_app/files/51/", {}},
                 {"pelmora_app/files/51/51FA1DB0EC7C4AF52D93A6F5D0E86BC5", "the game"},
             }));
    QCOMPARE(summary.Files, 2);
    QCOMPARE(summary.StreamedFiles, 0);
    QCOMPARE(summary.Bytes, 8);
    QCOMPARE(summary.NewContentFiles, 2);
    QCOMPARE(summary.NewContentBytes, 8);
    QCOMPARE(game.Observer.Warnings, QStringList());
}

void PublicationTest::ListsFilesInTheOrderOfTheirBytes()
{
    PublishedGame game;
    for (char const* const path : {"é", "b", "Z", "a/b", "a-b", "a/a"})
        game.Put(QString::fromUtf8(path), path);
    game.Publish();
    QCOMPARE(BasePaths(game),
             QStringList({"Game", "Z", "a-b", "a/a", "a/b", "b", QString::fromUtf8("é")}));
}

void PublicationTest::ModesDoNotDependOnTheUmask_data()
{
    QTest::addColumn<int>("mask");
    for (int const mask : {0077, 0022, 0002, 0000})
        QTest::newRow(qPrintable(QString::number(mask, 8))) << mask;
}

void PublicationTest::ModesDoNotDependOnTheUmask()
{
    QFETCH(int, mask);
    PublishedGame game;
    game.Put("large", QByteArray(300'000, 'x'));
    QVERIFY(SetMode(game.SourcePath("Game"), 0700));
    mode_t const before = umask(static_cast<mode_t>(mask));
    game.Publish();
    umask(before);
    QCOMPARE(ModeOf(game.Options.Output), 0755);
    for (auto const& [path, content] : game.Published())
        QCOMPARE(ModeOf(game.OutputPath(path)), path.endsWith('/') ? 0755 : 0644);
}

void PublicationTest::TheListsStayUnlessTheyAreGiven()
{
    PublishedGame game;
    game.Publish();
    QVERIFY(game.Read("pelmora_app/realmlist.info").isNull());
    game.Options.Hosts = QStringList("a");
    game.Options.RealmListAddress = "b";
    game.Publish();
    game.Options.Hosts.reset();
    game.Options.RealmListAddress.reset();
    game.Publish("build_2");
    QCOMPARE(game.Read("cdns.info"), QByteArray("a"));
    QCOMPARE(game.Read("pelmora_app/realmlist.info"), QByteArray("SET realmlist \"b\""));
}

void PublicationTest::TheDevelopmentChannelHasAVersionFileOfItsOwn()
{
    PublishedGame game;
    game.Options.DevChannel = true;
    game.Publish();
    QVERIFY(game.Read("pelmora_app/version.json").isNull());
    QCOMPARE(game.Read("pelmora_app/version_dev.json"), QByteArray("{\"build\":\"build_1\"}"));
    game.Options.DevChannel = false;
    game.Publish("build_2");
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
    QCOMPARE(game.Read("pelmora_app/version_dev.json"), QByteArray("{\"build\":\"build_1\"}"));
}

void PublicationTest::ABuildSharesContentWithEarlierOnes()
{
    PublishedGame game;
    game.Put("Data/a", "first");
    game.Publish();
    game.Put("Data/a", "second one");
    game.Put("Data/moved", "first");
    PublicationSummary const summary = game.Publish("build_2");
    QCOMPARE(summary.Files, 3);
    QCOMPARE(summary.NewContentFiles, 1);
    QCOMPARE(summary.NewContentBytes, 10);
    QCOMPARE(game.Read(PublishedGame::ContentPath("first")), QByteArray("first"));
    QCOMPARE(game.Read(PublishedGame::ContentPath("second one")), QByteArray("second one"));
}

void PublicationTest::EqualFilesAreStoredOnce()
{
    PublishedGame game;
    game.Put("a", "the game");
    PublicationSummary const summary = game.Publish();
    QCOMPARE(summary.Files, 2);
    QCOMPARE(summary.Bytes, 16);
    QCOMPARE(summary.NewContentFiles, 1);
    QCOMPARE(BasePaths(game), QStringList({"Game", "a"}));
}

void PublicationTest::ABuildCanBePublishedAgainAsItIs()
{
    PublishedGame game;
    game.Publish();
    Tree const before = game.Published();
    game.Publish("build_2");
    PublicationSummary const summary = game.Publish("build_1");
    QCOMPARE(summary.NewContentFiles, 0);
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
    for (auto const& [path, content] : before)
        QCOMPARE(game.Published().at(path), content);
}

void PublicationTest::ExcludedFilesAreNotPublished()
{
    PublishedGame game;
    game.Put(".DS_Store", "x");
    game.Put("Data/.DS_Store", "y");
    game.Put("Data/a.part", "of a name that would be refused");
    game.AddRules("{\"match\": \"**/.DS_Store\", \"exclude\": true},"
                  "{\"match\": \"**/*.part\", \"exclude\": true}");
    QCOMPARE(game.Publish().Files, 1);
    QCOMPARE(BasePaths(game), QStringList("Game"));
    QVERIFY(game.Read(PublishedGame::ContentPath("x")).isNull());
}

void PublicationTest::WindowsClientsGetTheirOwnListAndFlag()
{
    PublishedGame game;
    game.Options.Platform = ContentPlatform::Windows;
    game.Publish();
    QJsonObject const content =
        QJsonDocument::fromJson(game.Read("pelmora_app/builds/build_1/info.json"))["content"]
            .toObject();
    QCOMPARE(content.keys(), QStringList("base_win"));
    QCOMPARE(content["base_win"].toArray()[0].toObject()["flags"].toInt(), 0x0a);
}

void PublicationTest::FilesOfOthersInTheOutputFolderStay()
{
    PublishedGame game;
    game.Publish();
    QVERIFY(WriteFile(game.OutputPath("index.html"), "site"));
    QVERIFY(WriteFile(game.OutputPath("other_app/version.json"), "{}"));
    QVERIFY(WriteFile(game.OutputPath("pelmora_app/notes.txt"), "notes"));
    game.Publish("build_2");
    QCOMPARE(game.Read("index.html"), QByteArray("site"));
    QCOMPARE(game.Read("other_app/version.json"), QByteArray("{}"));
    QCOMPARE(game.Read("pelmora_app/notes.txt"), QByteArray("notes"));
    QCOMPARE(game.Read("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
}

void PublicationTest::WarnsOfAGameThatClientsCannotStart()
{
    PublishedGame game;
    game.SetRules("{\"rules\":[{\"match\": \"Game\", \"flags\": [\"game-executable\"]}]}");
    game.Publish();
    QCOMPARE(game.Observer.Warnings, QStringList("Game: the game's executable has no flag "
                                                 "executable, so clients cannot start it"));
    game.Observer.Warnings.clear();
    game.Options.Platform = ContentPlatform::Windows;
    game.Publish("build_2");
    QCOMPARE(game.Observer.Warnings, QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PublicationTest)
#include "tst_Publication.moc"
