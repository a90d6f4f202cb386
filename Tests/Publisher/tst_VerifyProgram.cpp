#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Data = SampleContent::Bytes(5000);

} // namespace

/// `verify` of a tree.
class VerifyProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ATreeAsPublishedIsRight();
    void BothChannelsAreVerified();
    void ADefectIsOneSentence_data();
    void ADefectIsOneSentence();
    void EveryDefectIsTold();
    void ATreeIsRepairedFromItsSource();
    void OfBuildsThatAreNotServedNothingIsSaid();

private:
    static ProgramResult Verify(PublishedGame const& p_Game)
    {
        return RunProgram({"verify", "--output", p_Game.Options.Output});
    }
};

void VerifyProgramTest::ATreeAsPublishedIsRight()
{
    PublishedGame game;
    game.Put("data", c_Data);
    game.Put("the same data", c_Data);
    game.Put("empty", "");
    game.Put("Music/a", "music");
    game.AddRules("{\"match\": \"Music/**\", \"streamed\": true}");
    game.Publish();
    ProgramResult const result = Verify(game);
    QCOMPARE(result.Status, 0);
    QCOMPARE(result.Output,
             QByteArray("Builds build_1: 4 files looked at, 4 of them read, 0 defects\n"));
    QCOMPARE(result.Errors, QByteArray());
}

void VerifyProgramTest::BothChannelsAreVerified()
{
    PublishedGame game;
    game.Publish("live");
    game.Put("data", c_Data);
    game.Options.DevChannel = true;
    game.Publish("next");
    QCOMPARE(Verify(game).Output,
             QByteArray("Builds live, next: 2 files looked at, 2 of them read, 0 defects\n"));
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath(c_Data))));
    QCOMPARE(Verify(game).Status, 1);

    QVERIFY(QFile::remove(game.OutputPath("pelmora_app/version_dev.json")));
    QCOMPARE(Verify(game).Status, 0);
    QVERIFY(QFile::rename(game.OutputPath("pelmora_app/version.json"),
                          game.OutputPath("pelmora_app/version_dev.json")));
    QCOMPARE(Verify(game).Status, 0);
}

void VerifyProgramTest::ADefectIsOneSentence_data()
{
    QTest::addColumn<GameChange>("damage");
    QTest::addColumn<QString>("sentence");
    QString const content = PublishedGame::ContentPath(c_Data);
    auto const put = [](QString const& p_Path, QByteArray const& p_Bytes) -> GameChange {
        return
            [=](PublishedGame& p_Game) { QVERIFY(WriteFile(p_Game.OutputPath(p_Path), p_Bytes)); };
    };
    auto const remove = [](QString const& p_Path) -> GameChange {
        return [=](PublishedGame& p_Game) { QVERIFY(QFile::remove(p_Game.OutputPath(p_Path))); };
    };
    AddRow("missing", remove(content), content + " (Data/a): is missing");
    AddRow("a folder", GameChange([content](PublishedGame& p_Game) {
               QVERIFY(QFile::remove(p_Game.OutputPath(content)));
               QVERIFY(QDir().mkpath(p_Game.OutputPath(content)));
           }),
           content + " (Data/a): is no file");
    QByteArray damaged = c_Data;
    damaged[2500] = static_cast<char>(~damaged[2500]);
    AddRow("one byte", put(content, damaged),
           content + " (Data/a): the MD5 of its 5000 bytes is " + SampleContent::Md5(damaged));
    AddRow("cut", put(content, c_Data.left(4999)),
           content + " (Data/a): the MD5 of its 4999 bytes is " +
               SampleContent::Md5(c_Data.left(4999)));
    QString const version = "pelmora_app/version.json";
    AddRow("no version", remove(version), version + ": is missing");
    AddRow("no text", put(version, "x"), version + ": names no build");
    AddRow("no build", put(version, "{\"build\": 1}"), version + ": names no build");
    AddRow("a build that is not there", put(version, "{\"build\": \"b\"}"),
           QString("pelmora_app/builds/b/info.json: there is no build b"));
    QString const manifest = "pelmora_app/builds/build_1/info.json";
    AddRow("no manifest", put(manifest, "[]"),
           manifest + ": is no manifest: it has no list of base files");
    AddRow("no host list", remove("cdns.info"),
           "cdns.info: cannot be read: "
           "No such file or directory");
    QString const hosts = "cdns.info: is not a line of names with one blank between them and "
                          "nothing behind the last";
    AddRow("a line end in the host list", put("cdns.info", "a b\n"), hosts);
    AddRow("two blanks in the host list", put("cdns.info", "a  b"), hosts);
    AddRow("an empty host list", put("cdns.info", ""), hosts);
}

void VerifyProgramTest::ADefectIsOneSentence()
{
    QFETCH(GameChange, damage);
    QFETCH(QString, sentence);
    PublishedGame game;
    game.Put("Data/a", c_Data);
    game.Publish();
    damage(game);
    ProgramResult const result = Verify(game);
    QCOMPARE(result.Status, 1);
    QCOMPARE(QString::fromUtf8(result.Errors),
             "varnholt-publish: " + game.OutputPath(sentence) + '\n');
    QVERIFY2(result.Output.endsWith(", 1 defects\n"), result.Output.constData());
}

void VerifyProgramTest::EveryDefectIsTold()
{
    PublishedGame game;
    for (int i = 0; i < 30; ++i)
        game.Put(QString::number(i), QByteArray::number(i));
    game.Publish();
    QStringList sentences;
    for (int i = 0; i < 30; i += 3) {
        QString const content = PublishedGame::ContentPath(QByteArray::number(i));
        QVERIFY(QFile::remove(game.OutputPath(content)));
        sentences += QString("varnholt-publish: %1 (%2): is missing")
                         .arg(game.OutputPath(content), QString::number(i));
    }
    sentences.sort();
    ProgramResult const result = Verify(game);
    QStringList told = QString::fromUtf8(result.Errors).split('\n', Qt::SkipEmptyParts);
    told.sort();
    QCOMPARE(told, sentences);
    QCOMPARE(result.Output,
             QByteArray("Builds build_1: 31 files looked at, 31 of them read, 10 defects\n"));
}

void VerifyProgramTest::ATreeIsRepairedFromItsSource()
{
    PublishedGame game;
    game.Put("data", c_Data);
    game.Put("more", "more");
    game.Put("gone", "gone");
    game.Publish();
    Tree const before = game.Published();
    QByteArray damaged = c_Data;
    damaged[2500] = static_cast<char>(~damaged[2500]);
    QVERIFY(WriteFile(game.OutputPath(PublishedGame::ContentPath(c_Data)), damaged));
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath("more"))));
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath("gone"))));
    game.Put("gone", "GONE");
    QStringList const repair{"verify",   "--output", game.Options.Output,
                             "--repair", "--source", game.Options.Source};
    ProgramResult const result = RunProgram(repair);
    QCOMPARE(result.Status, 1);
    QCOMPARE(result.Errors,
             "varnholt-publish: " + game.OutputPath(PublishedGame::ContentPath("gone")).toUtf8() +
                 " (gone): is missing\n");
    QCOMPARE(game.Read(PublishedGame::ContentPath(c_Data)), c_Data);
    game.Put("gone", "gone");
    QCOMPARE(RunProgram(repair).Status, 0);
    QCOMPARE(game.Published(), before);
    QCOMPARE(RunProgram(repair).Status, 0);
}

void VerifyProgramTest::OfBuildsThatAreNotServedNothingIsSaid()
{
    PublishedGame game;
    game.Put("Data/a", c_Data);
    game.Publish("old");
    QVERIFY(QFile::remove(game.SourcePath("Data/a")));
    game.Publish("new");
    QVERIFY(QFile::remove(game.OutputPath(PublishedGame::ContentPath(c_Data))));
    QCOMPARE(Verify(game).Status, 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::VerifyProgramTest)
#include "tst_VerifyProgram.moc"
