#include "Publisher/Tree/ContentStaging.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SmallVolume.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QStorageInfo>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::PublicationSummary;

namespace {

constexpr int c_Large = 600 * 1024; ///< more than a block
constexpr int c_Group = 16;         ///< files that are read side by side

/// A large file's content, one for each letter.
QByteArray Large(char p_Letter)
{
    return QByteArray(c_Large, p_Letter);
}

/// Has a build of twenty large files stopped when the first group of them is copied. \return how it
/// has failed
QString StopBehindAGroup(PublishedGame& p_Game)
{
    for (char letter = 'a'; letter < 'u'; ++letter)
        p_Game.Put(QString("Data/%1").arg(QLatin1Char(letter)), Large(letter));
    p_Game.Age();
    p_Game.Options.Jobs = 1;
    p_Game.Observer.OnBytes = [&] {
        if (p_Game.Observer.Bytes > c_Group * c_Large)
            throw Publisher::Failure("stopped");
    };
    return p_Game.FailureSentence();
}

} // namespace

/// How often content is read and written on its way into the tree, and what an end in between
/// leaves to the next run.
class ContentIntakeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NewContentIsReadOnce();
    void EqualLargeFilesAreStoredOnce();
    void ALargeFileThatTheTreeHasIsNotCopied();
    void HolesTakeNoRoom();
    void AStoppedBuildGoesOn();
    void AStoppedBuildOfAnotherSourceIsNotBelieved();
    void WhatAPowerFailureMayHaveTakenIsReadAgain();
    void AFullDiskIsLeftWithRoom();
    void TheNumberOfJobsIsKept();
};

void ContentIntakeTest::NewContentIsReadOnce()
{
    PublishedGame game;
    for (char const letter : {'a', 'b', 'c'})
        game.Put(QString("Data/%1").arg(QLatin1Char(letter)), Large(letter));
    game.Put("Data/small", "small");
    game.Publish();
    QCOMPARE(game.Observer.Bytes.load(), 3 * c_Large + 5 + 8);
    for (char const letter : {'a', 'b', 'c'})
        QCOMPARE(game.Read(PublishedGame::ContentPath(Large(letter))), Large(letter));
}

void ContentIntakeTest::EqualLargeFilesAreStoredOnce()
{
    PublishedGame game;
    game.Put("Data/a", Large('a'));
    game.Put("Data/b", Large('a'));
    QByteArray const end = Large('a').replace(c_Large - 1, 1, "e");
    game.Put("Data/c", end);
    QCOMPARE(game.Publish().NewContentFiles, 3);
    QCOMPARE(game.Read(PublishedGame::ContentPath(Large('a'))), Large('a'));
    QCOMPARE(game.Read(PublishedGame::ContentPath(end)), end);
}

void ContentIntakeTest::ALargeFileThatTheTreeHasIsNotCopied()
{
    PublishedGame game;
    game.Put("Data/a", Large('a'));
    game.Publish();
    game.Observer.OnBytes = [&] {
        QVERIFY(Publisher::ContentStaging(game.Options.Output, "pelmora_app").Files().isEmpty());
    };
    game.Observer.Bytes = 0;
    QCOMPARE(game.Publish("build_2").IndexedFiles, 0);
    QCOMPARE(game.Observer.Bytes.load(), c_Large + 8);
}

void ContentIntakeTest::HolesTakeNoRoom()
{
    constexpr qint64 c_Hole = 64LL * 1024 * 1024;

    PublishedGame game;
    game.Put("Data/a", "start");
    QVERIFY(QFile::resize(game.SourcePath("Data/a"), c_Hole));
    game.Publish();
    QByteArray const content = ReadFile(game.SourcePath("Data/a"));
    QString const path = game.OutputPath(PublishedGame::ContentPath(content));
    QCOMPARE(ReadFile(path), content);
    struct stat status = {};
    QCOMPARE(stat(path.toUtf8().constData(), &status), 0);
    QVERIFY(qint64{status.st_blocks} * 512 < c_Hole / 10);
}

void ContentIntakeTest::AStoppedBuildGoesOn()
{
    PublishedGame game;
    QCOMPARE(StopBehindAGroup(game), QString("stopped"));
    QCOMPARE(game.Published(), Tree());
    game.Observer.OnBytes = {};
    game.Observer.Bytes = 0;
    PublicationSummary const summary = game.Publish();
    QCOMPARE(summary.IndexedFiles, c_Group);
    QCOMPARE(summary.NewContentFiles, 21);
    QCOMPARE(game.Observer.Bytes.load(), 4 * c_Large + 8);
    for (char letter = 'a'; letter < 'u'; ++letter)
        QCOMPARE(game.Read(PublishedGame::ContentPath(Large(letter))), Large(letter));
    QVERIFY(!QFileInfo::exists(game.OutputPath(".varnholt-publish.pelmora_app.staged")));
    QCOMPARE(game.Publish("build_2").IndexedFiles, 21);
}

void ContentIntakeTest::AStoppedBuildOfAnotherSourceIsNotBelieved()
{
    PublishedGame game;
    game.Put("Data/a", "content a");
    game.Age();
    game.Observer.OnPhase = [](QString const& p_Phase) {
        if (p_Phase == "Copying")
            throw Publisher::Failure("stopped");
    };
    QCOMPARE(game.FailureSentence(), QString("stopped"));
    game.Observer.OnPhase = {};
    QString const moved = game.Temporary.filePath("moved");
    QVERIFY(QDir().rename(game.Options.Source, moved));
    game.Options.Source = moved;
    QCOMPARE(game.Publish().IndexedFiles, 0);
    QCOMPARE(game.Read(PublishedGame::ContentPath("content a")), QByteArray("content a"));
}

void ContentIntakeTest::WhatAPowerFailureMayHaveTakenIsReadAgain()
{
    PublishedGame game;
    QCOMPARE(StopBehindAGroup(game), QString("stopped"));
    QString const staged = game.OutputPath(".varnholt-publish.pelmora_app.staged/");
    QString const content = staged + PublishedGame::ContentPath(Large('a')).right(32);
    QCOMPARE(ReadFile(content), Large('a'));
    QVERIFY(WriteFile(content, Large('\0')));
    QVERIFY(WriteFile(staged + "boot", "another"));
    game.Observer.OnBytes = {};
    QCOMPARE(game.Publish().IndexedFiles, 0);
    QCOMPARE(game.Read(PublishedGame::ContentPath(Large('a'))), Large('a'));
}

void ContentIntakeTest::AFullDiskIsLeftWithRoom()
{
    PublishedGame game;
    game.Options.Output = game.Temporary.filePath("volume");
    SmallVolume const volume(game.Options.Output, "2m");
    if (!volume.IsMounted())
        QSKIP("this user cannot mount a volume");
    for (char letter = 'a'; letter < 'k'; ++letter)
        game.Put(QString("Data/%1").arg(QLatin1Char(letter)), Large(letter));
    QString const failure = game.FailureSentence();
    QVERIFY2(failure.contains(": cannot be written: No space left"), qPrintable(failure));
    QStorageInfo const storage(game.Options.Output);
    QVERIFY(storage.bytesAvailable() > storage.bytesTotal() * 9 / 10);
}

void ContentIntakeTest::TheNumberOfJobsIsKept()
{
    PublishedGame game;
    for (int i = 0; i < 50; ++i)
        game.Put(QString("Data/%1").arg(i), QByteArray::number(i));
    game.Options.Jobs = 1;
    std::atomic<int> atOnce{0};
    std::atomic<int> most{0};
    game.Observer.OnBytes = [&] {
        most = qMax(most.load(), ++atOnce);
        QThread::yieldCurrentThread();
        --atOnce;
    };
    game.Publish();
    QCOMPARE(most.load(), 1);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ContentIntakeTest)
#include "tst_ContentIntake.moc"
