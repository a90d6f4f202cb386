#include "Publisher/Source/HashIndex.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <chrono>
#include <filesystem>

namespace Varnholt::TestSupport {

using Publisher::PublicationSummary;

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

using Alteration = std::function<void(QByteArray& p_Index)>;

fs::path Native(QString const& p_Path)
{
    return p_Path.toStdString();
}

/// Writes a file with another content of the same size, and gives it back its time.
void AlterSecretly(PublishedGame const& p_Game, QString const& p_Path, QByteArray const& p_Bytes)
{
    fs::path const path = Native(p_Game.SourcePath(p_Path));
    auto const time = fs::last_write_time(path);
    p_Game.Put(p_Path, p_Bytes);
    fs::last_write_time(path, time);
}

/// A game of an executable and two files, all of them indexed by its first build.
class IndexedGame : public PublishedGame {
public:
    IndexedGame()
    {
        Put("Data/a", "content a");
        Put("Data/b", "content b");
        Age();
        Publish();
    }
};

} // namespace

} // namespace Varnholt::TestSupport

Q_DECLARE_METATYPE(Varnholt::TestSupport::Alteration)

namespace Varnholt::TestSupport {

class HashIndexTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void UnchangedFilesAreNotRead();
    void AChangedFileIsRead_data();
    void AChangedFileIsRead();
    void AFileOfTheFutureIsReadAgain();
    void AFileThatMayStillChangeUnseenIsLeftOut_data();
    void AFileThatMayStillChangeUnseenIsLeftOut();
    void AnIndexOfAnotherSourceKnowsNothing();
    void ApplicationsHaveIndexesOfTheirOwn();
    void TheIndexIsIgnoredOnDemand();
    void WithoutIndexNoneIsWritten();
    void AnIndexThatIsWrongPublishesNothingWrong();
    void ADamagedIndexIsIgnoredWithAWarning_data();
    void ADamagedIndexIsIgnoredWithAWarning();
    void AFailureKeepsWhatWasRead();
    void NewFilesBetweenIndexedOnesAreRead();
};

void HashIndexTest::UnchangedFilesAreNotRead()
{
    IndexedGame game;
    game.Observer.OnBytes = [] { throw Publisher::Failure("a file was read"); };
    PublicationSummary const summary = game.Publish("build_2");
    QCOMPARE(summary.IndexedFiles, 3);
    QCOMPARE(summary.IndexedBytes, 26);
    QCOMPARE(summary.Files, 3);
    QCOMPARE(summary.Bytes, 26);
    QCOMPARE(game.Read("pelmora_app/builds/build_2/info.json").replace("build_2", "build_1"),
             game.Read("pelmora_app/builds/build_1/info.json"));
}

void HashIndexTest::AChangedFileIsRead_data()
{
    QTest::addColumn<GameChange>("change");
    auto const add = [](char const* p_Name, GameChange const& p_Change) {
        QTest::newRow(p_Name) << p_Change;
    };
    add("another size", [](PublishedGame& p_Game) { AlterSecretly(p_Game, "Data/a", "CONTENT"); });
    add("another time by a nanosecond", [](PublishedGame& p_Game) {
        AlterSecretly(p_Game, "Data/a", "CONTENT A");
        fs::path const path = Native(p_Game.SourcePath("Data/a"));
        fs::last_write_time(path, fs::last_write_time(path) + 1ns);
    });
    add("another inode", [](PublishedGame& p_Game) {
        fs::path const path = Native(p_Game.SourcePath("Data/a"));
        auto const time = fs::last_write_time(path);
        p_Game.Put("other", "CONTENT A");
        fs::rename(Native(p_Game.SourcePath("other")), path);
        fs::last_write_time(path, time);
    });
}

void HashIndexTest::AChangedFileIsRead()
{
    QFETCH(GameChange, change);
    IndexedGame game;
    change(game);
    QByteArray const content = ReadFile(game.SourcePath("Data/a"));
    QCOMPARE(game.Publish("build_2").IndexedFiles, 2);
    QCOMPARE(game.Read(PublishedGame::ContentPath(content)), content);
}

void HashIndexTest::AFileOfTheFutureIsReadAgain()
{
    IndexedGame game;
    fs::last_write_time(Native(game.SourcePath("Data/a")), fs::file_time_type::clock::now() + 1h);
    QCOMPARE(game.Publish("build_2").IndexedFiles, 2);
    QCOMPARE(game.Publish("build_3").IndexedFiles, 2);
    game.Age();
    QCOMPARE(game.Publish("build_4").IndexedFiles, 0);
    QCOMPARE(game.Publish("build_5").IndexedFiles, 3);
}

void HashIndexTest::AFileThatMayStillChangeUnseenIsLeftOut_data()
{
    QTest::addColumn<qint64>("age"); // ns, at the time of the scan
    QTest::addColumn<qint64>("fraction");
    QTest::addColumn<bool>("isKnown");
    constexpr qint64 milli = 1'000'000;
    QTest::newRow("within a step of the clock") << 40 * milli << qint64(1) << false;
    QTest::newRow("older than a step of the clock") << 60 * milli << qint64(1) << true;
    QTest::newRow("within a step of an old file system") << 1990 * milli << qint64(0) << false;
    QTest::newRow("older than a step of an old file system") << 2010 * milli << qint64(0) << true;
}

void HashIndexTest::AFileThatMayStillChangeUnseenIsLeftOut()
{
    QFETCH(qint64, age);
    QFETCH(qint64, fraction);
    QFETCH(bool, isKnown);
    QTemporaryDir const folder;
    std::chrono::nanoseconds const modified = 1000s + std::chrono::nanoseconds(fraction);
    Publisher::BuildFile const hashed{
        {"a", {}, 1, modified, 7}, {}, "0CC175B9C0F1B6A831C399E269772661"};
    Publisher::HashIndex const index(folder.filePath("index"), folder.path());
    index.Write({hashed}, modified + std::chrono::nanoseconds(age));
    std::vector<Publisher::BuildFile> files{{hashed.Source, {}, {}}};
    QVERIFY(index.FillIn(files));
    QCOMPARE(files[0].Md5, isKnown ? hashed.Md5 : QString());
}

void HashIndexTest::AnIndexOfAnotherSourceKnowsNothing()
{
    IndexedGame game;
    QString const moved = game.Temporary.filePath("moved");
    QVERIFY(QDir().rename(game.Options.Source, moved));
    game.Options.Source = moved;
    QCOMPARE(game.Publish("build_2").IndexedFiles, 0);
    QCOMPARE(game.Observer.Warnings, QStringList());
    QCOMPARE(game.Publish("build_3").IndexedFiles, 3);
}

void HashIndexTest::ApplicationsHaveIndexesOfTheirOwn()
{
    IndexedGame game;
    game.Options.AppId = "other_app";
    QCOMPARE(game.Publish().IndexedFiles, 0);
    QCOMPARE(game.Publish("build_2").IndexedFiles, 3);
    game.Options.AppId = "pelmora_app";
    QCOMPARE(game.Publish("build_2").IndexedFiles, 3);
}

void HashIndexTest::TheIndexIsIgnoredOnDemand()
{
    IndexedGame game;
    AlterSecretly(game, "Data/a", "CONTENT A");
    game.Options.ReadIndex = false;
    QCOMPARE(game.Publish("build_2").IndexedFiles, 0);
    QCOMPARE(game.Read(PublishedGame::ContentPath("CONTENT A")), QByteArray("CONTENT A"));
    // Reading everything has cured the index.
    game.Options.ReadIndex = true;
    QCOMPARE(game.Publish("build_3").IndexedFiles, 3);
    QVERIFY(game.Read("pelmora_app/builds/build_3/info.json")
                .contains(PublishedGame::ContentPath("CONTENT A").right(32).toUtf8()));
}

void HashIndexTest::WithoutIndexNoneIsWritten()
{
    PublishedGame game;
    game.Age();
    game.Options.ReadIndex = false;
    game.Options.WriteIndex = false;
    game.Publish();
    QVERIFY(!QFileInfo::exists(game.OutputPath(game.IndexName())));
    game.Options.ReadIndex = true;
    QCOMPARE(game.Publish("build_2").IndexedFiles, 0);
}

void HashIndexTest::AnIndexThatIsWrongPublishesNothingWrong()
{
    IndexedGame game;
    AlterSecretly(game, "Data/a", "CONTENT A");
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath("content a"))));
    Tree const before = game.Published();
    game.Options.Build.Id = "build_2";
    QCOMPARE(game.FailureSentence(),
             QString("Data/a: the file changed since it was indexed, but not its time: publish "
                     "with --rehash"));
    QCOMPARE(game.Published(), before);
    game.Options.ReadIndex = false;
    QCOMPARE(game.FailureSentence(), QString());
}

void HashIndexTest::ADamagedIndexIsIgnoredWithAWarning_data()
{
    QTest::addColumn<Alteration>("alter");
    auto const add = [](char const* p_Name, Alteration const& p_Alter) {
        QTest::newRow(p_Name) << p_Alter;
    };
    add("empty", [](QByteArray& p_Index) { p_Index.clear(); });
    add("another format", [](QByteArray& p_Index) { p_Index.replace("index 1", "index 2"); });
    add("cut in the head", [](QByteArray& p_Index) { p_Index.truncate(30); });
    add("cut in a line", [](QByteArray& p_Index) { p_Index.truncate(p_Index.indexOf("Data/b")); });
    add("cut after a line", [](QByteArray& p_Index) { p_Index.truncate(p_Index.indexOf("end ")); });
    add("cut in the last line", [](QByteArray& p_Index) { p_Index.chop(1); });
    add("continued", [](QByteArray& p_Index) { p_Index += "x\n"; });
    add("another digest", [](QByteArray& p_Index) {
        int const digest = p_Index.indexOf(" Data/a") - 1;
        p_Index[digest] = p_Index[digest] == '0' ? '1' : '0';
    });
    add("another path", [](QByteArray& p_Index) { p_Index.replace("Data/a", "Data/A"); });
    add("bytes of something else", [](QByteArray& p_Index) { p_Index.fill('\0', 300'000); });
}

void HashIndexTest::ADamagedIndexIsIgnoredWithAWarning()
{
    QFETCH(Alteration, alter);
    IndexedGame game;
    QString const file = game.OutputPath(game.IndexName());
    QByteArray const good = ReadFile(file);
    QByteArray index = good;
    alter(index);
    QVERIFY(index != good);
    QVERIFY(QFile::remove(file));
    QVERIFY(WriteFile(file, index));
    QCOMPARE(game.Publish("build_2").IndexedFiles, 0);
    QCOMPARE(game.Observer.Warnings,
             QStringList(file + ": the index is damaged, so every file is read again"));
    QCOMPARE(ReadFile(file), good);
}

void HashIndexTest::AFailureKeepsWhatWasRead()
{
    IndexedGame game;
    game.Put("Data/c", "content c");
    game.Age();
    QVERIFY(QFile::remove(game.OutputPath("pelmora_app/version.json")));
    QVERIFY(QDir().mkpath(game.OutputPath("pelmora_app/version.json")));
    game.Options.Build.Id = "build_2";
    QVERIFY(game.FailureSentence().contains("version.json: is not a file"));
    QVERIFY(QDir().rmdir(game.OutputPath("pelmora_app/version.json")));
    QCOMPARE(game.Publish("build_2").IndexedFiles, 4);
    QCOMPARE(game.Read(PublishedGame::ContentPath("content c")), QByteArray("content c"));
}

void HashIndexTest::NewFilesBetweenIndexedOnesAreRead()
{
    IndexedGame game;
    for (char const* const path : {"A", "Data/a-", "Data/aa", "é"})
        game.Put(QString::fromUtf8(path), "new");
    QVERIFY(QFile::remove(game.SourcePath("Data/b")));
    PublicationSummary const summary = game.Publish("build_2");
    QCOMPARE(summary.IndexedFiles, 2);
    QCOMPARE(summary.Files, 6);
    game.Age();
    game.Publish("build_3");
    QCOMPARE(game.Publish("build_4").IndexedFiles, 6);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HashIndexTest)
#include "tst_HashIndex.moc"
