#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <filesystem>

namespace Varnholt::TestSupport {

namespace {

void Write(QString const& p_Path, QByteArray const& p_Bytes)
{
    if (!WriteFile(p_Path, p_Bytes))
        qFatal("%s cannot be written", qPrintable(p_Path));
}

void MakeFolder(QString const& p_Path)
{
    if (!QDir().mkpath(p_Path))
        qFatal("%s cannot be made", qPrintable(p_Path));
}

/// Writes a source file anew before it is read, with its old size and time.
void AlterSecretly(PublishedGame& p_Game)
{
    p_Game.Observer.OnPhase = [&p_Game](QString const& p_Phase) {
        if (p_Phase != "Reading")
            return;
        QString const path = p_Game.SourcePath("Data/new");
        auto const changed = [&] { return QFileInfo(path).metadataChangeTime(); };
        auto const time = std::filesystem::last_write_time(path.toStdString());
        QDateTime const before = changed();
        // The clock of files goes in steps.
        while (changed() == before)
            p_Game.Put("Data/new", "NEW CONTENT");
        std::filesystem::last_write_time(path.toStdString(), time);
    };
}

} // namespace

class PublicationFailuresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFailureLeavesTheTreeAsItWas_data();
    void AFailureLeavesTheTreeAsItWas();
    void AFailureOfTheFirstBuildShowsNothing_data() { AFailureLeavesTheTreeAsItWas_data(); }
    void AFailureOfTheFirstBuildShowsNothing();
    void TheOutputMustNotLieInTheSource();
    void TheSourceMustNotLieInPublishedContent();
    void AnOutputThatIsAFileIsRefused();
};

void PublicationFailuresTest::AFailureLeavesTheTreeAsItWas_data()
{
    QTest::addColumn<GameChange>("prepare");
    QTest::addColumn<QString>("sentence"); // a part of it
    auto const add = [](char const* p_Name, QString const& p_Sentence, GameChange const& p_Call) {
        QTest::newRow(p_Name) << p_Call << p_Sentence;
    };
    add("stopped while hashing", "stopped", [](PublishedGame& p_Game) {
        p_Game.Observer.OnBytes = [] { throw Publisher::Failure("stopped"); };
    });
    add("stopped while copying", "stopped", [](PublishedGame& p_Game) {
        p_Game.Observer.OnPhase = [](QString const& p_Phase) {
            if (p_Phase == "Copying")
                throw Publisher::Failure("stopped");
        };
    });
    add("a file that grows", "Data/new: the file changed while it was being published",
        [](PublishedGame& p_Game) {
            p_Game.Observer.OnPhase = [&p_Game](QString const& p_Phase) {
                if (p_Phase == "Reading")
                    p_Game.Put("Data/new", "new content and more");
            };
        });
    add("a file that changes secretly", "Data/new: the file changed while it was being published",
        [](PublishedGame& p_Game) { AlterSecretly(p_Game); });
    add("a file that vanishes", "Data/new: cannot be read", [](PublishedGame& p_Game) {
        p_Game.Observer.OnPhase = [&p_Game](QString const&) {
            QFile::remove(p_Game.SourcePath("Data/new"));
        };
    });
    add("no game executable", "source: no file has the flag game-executable",
        [](PublishedGame& p_Game) { p_Game.SetRules("{}"); });
    add("two game executables", "Data/new and Game both have the flag game-executable",
        [](PublishedGame& p_Game) {
            p_Game.SetRules("{\"rules\":[{\"match\": \"**\", \"flags\": [\"game-executable\"]}]}");
        });
    add("a streamed game executable", "Game: the game's executable must not be streamed",
        [](PublishedGame& p_Game) { p_Game.AddRules("{\"match\": \"**\", \"streamed\": true}"); });
    add("an undeclared locale", "rules.json: line 1, rules[1]: the locale \"deDE\" is not declared",
        [](PublishedGame& p_Game) {
            p_Game.AddRules("{\"match\": \"Data/**\", \"locale\": \"deDE\"}");
        });
    add("names that differ in case", "DATA and Data differ only in letter case",
        [](PublishedGame& p_Game) { p_Game.Put("DATA/new", "other"); });
    add("a name of the clients", "ToDownload.db: clients keep a list of their own",
        [](PublishedGame& p_Game) { p_Game.Put("ToDownload.db", "x"); });
    add("a name of a device", "Data/aux.txt: Windows keeps the name \"aux.txt\" for a device",
        [](PublishedGame& p_Game) {
            p_Game.Put("Data/aux.txt", "x");
            p_Game.Options.Platform = Publisher::ContentPlatform::Windows;
        });
    add("a host with a scheme", "give the host name without a scheme",
        [](PublishedGame& p_Game) { p_Game.Options.Hosts = QStringList("http://a.example"); });
    add("no source folder", "none: the source folder does not exist",
        [](PublishedGame& p_Game) { p_Game.Options.Source = p_Game.Temporary.filePath("none"); });
    add("a source that is a file", "rules.json: the source is not a folder",
        [](PublishedGame& p_Game) { p_Game.Options.Source = p_Game.Options.RulesFile; });
    add("an empty source", "empty: the source holds no file", [](PublishedGame& p_Game) {
        p_Game.Options.Source = p_Game.Temporary.filePath("empty");
        MakeFolder(p_Game.Options.Source + "/folder");
    });
}

void PublicationFailuresTest::AFailureLeavesTheTreeAsItWas()
{
    QFETCH(GameChange, prepare);
    QFETCH(QString, sentence);
    PublishedGame game;
    game.Options.Hosts = QStringList("old.example");
    game.Options.RealmListAddress = "old";
    game.Publish();
    Tree const before = game.Published();
    game.Put("Data/new", "new content");
    game.Options.Hosts = QStringList("new.example");
    game.Options.RealmListAddress = "new";
    game.Options.Build.Id = "build_2";
    prepare(game);
    QString const failure = game.FailureSentence();
    QVERIFY2(failure.contains(sentence), qPrintable(failure));
    QCOMPARE(game.Published(), before);
}

void PublicationFailuresTest::AFailureOfTheFirstBuildShowsNothing()
{
    QFETCH(GameChange, prepare);
    QFETCH(QString, sentence);
    PublishedGame game;
    game.Put("Data/new", "new content");
    prepare(game);
    QString const failure = game.FailureSentence();
    QVERIFY2(failure.contains(sentence), qPrintable(failure));
    QCOMPARE(game.Published(), Tree());
}

void PublicationFailuresTest::TheOutputMustNotLieInTheSource()
{
    PublishedGame game;
    QString const link = game.Temporary.filePath("link");
    QVERIFY(QFile::link(game.Options.Source, link));
    Tree const before = TreeOf(game.Options.Source);
    for (QString const& output :
         {game.Options.Source, game.Options.Source + "/out", game.Options.Source + "/x/../out/",
          link + "/out", game.Temporary.filePath("source/deep/er")}) {
        game.Options.Output = output;
        QCOMPARE(game.FailureSentence(),
                 output + ": the output folder must not be inside the source folder");
    }
    QCOMPARE(TreeOf(game.Options.Source), before);
    game.Options.Output = game.Options.Source + "-beside";
    QCOMPARE(game.FailureSentence(), QString());
}

void PublicationFailuresTest::TheSourceMustNotLieInPublishedContent()
{
    PublishedGame game;
    game.Publish();
    Tree const before = game.Published();
    game.Options.Source = game.OutputPath("pelmora_app/files");
    QCOMPARE(game.FailureSentence(),
             game.Options.Source + ": the source folder must not be inside published content");
    QCOMPARE(game.Published(), before);
}

void PublicationFailuresTest::AnOutputThatIsAFileIsRefused()
{
    PublishedGame game;
    Write(game.Options.Output, "a file");
    QCOMPARE(game.FailureSentence(), game.Options.Output + ": is not a folder");
    QCOMPARE(ReadFile(game.Options.Output), QByteArray("a file"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PublicationFailuresTest)
#include "tst_PublicationFailures.moc"
