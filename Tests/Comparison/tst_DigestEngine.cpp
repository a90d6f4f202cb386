#include "GameModules/DigestEngine.hpp"
#include "Launcher/Helper/Md5Lanes.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>

namespace Varnholt::TestSupport {

using Launcher::DigestEngine;
using Launcher::FileDigest::Digest;

namespace {

bool GoOn()
{
    return true;
}

} // namespace

class DigestEngineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryLengthHasItsDigest_data();
    void EveryLengthHasItsDigest();
    void AnyNumberOfFilesSideBySideHasItsDigests();
    void WhatCannotBeReadIsNotOpened();
    void ItIsAskedForEachBlockInItsOrder();
    void AStoppedFileIsIncomplete();
    void FilesThatNobodyTakesHoldNothingUp();
    void AStopEndsItWithin50Milliseconds();
    void AFileThatCannotBeReadYetIsAskedForAllTheSame();
    void AFileThatShrinksComesToAnEnd();
    void AFileThatGrowsIsHashedToItsEnd();
    void AFileBehindLargerOnesIsHashedMeanwhile();

private:
    QString Put(QByteArray const& p_Bytes)
    {
        QFile file(Folder.filePath(QString::number(++Number)));
        if (file.open(QIODevice::WriteOnly))
            file.write(p_Bytes);
        return file.fileName();
    }

    /// A file for every lane that does not come to an end.
    std::vector<DigestEngine::Ticket> AddHuge(DigestEngine& p_Engine)
    {
        constexpr qint64 c_Huge = 1LL << 40; // of nothing: it takes no room

        QFile huge(Folder.filePath("huge"));
        std::vector<DigestEngine::Ticket> files;
        if (huge.open(QIODevice::WriteOnly) && huge.resize(c_Huge))
            while (files.size() < DigestEngine::c_MostThreads * Launcher::Md5Lanes::c_Count)
                files.push_back(p_Engine.Add(huge.fileName()));
        return files;
    }

    QTemporaryDir Folder;
    int Number = 0;
};

void DigestEngineTest::EveryLengthHasItsDigest_data()
{
    constexpr int c_Read = 512 * 1024;

    QTest::addColumn<int>("length");
    for (int const length : {0,          1,
                             55,         56,
                             57,         63,
                             64,         65,
                             119,        120,
                             128,        c_Read - 9,
                             c_Read - 8, c_Read - 1,
                             c_Read,     c_Read + 1,
                             3 * c_Read, 64 * 1024 - 1,
                             64 * 1024,  64 * 1024 + 1})
        QTest::addRow("%d", length) << length;
}

void DigestEngineTest::EveryLengthHasItsDigest()
{
    QFETCH(int, length);
    QByteArray const bytes = SampleContent::Bytes(length);
    QString const path = Put(bytes);

    // Alone, and among so many that all go through the lanes.
    for (std::size_t const count : {std::size_t{1}, Launcher::Md5Lanes::c_Count}) {
        DigestEngine engine;
        std::vector<DigestEngine::Ticket> files;
        for (std::size_t i = 0; i < count * DigestEngine::c_MostThreads; ++i)
            files.push_back(engine.Add(path));
        for (DigestEngine::Ticket const& file : files) {
            Digest const digest = engine.Take(file, GoOn);
            QVERIFY(digest.Opened && digest.Complete);
            QCOMPARE(digest.Md5, SampleContent::Md5(bytes));
        }
    }
}

void DigestEngineTest::AnyNumberOfFilesSideBySideHasItsDigests()
{
    constexpr int c_Files = 200;
    constexpr int c_Longest = 200'000;

    unsigned const seed = std::random_device()();
    std::mt19937 random(seed);
    std::vector<QString> paths;
    QStringList expected;
    for (int i = 0; i < c_Files; ++i) {
        QByteArray bytes(std::uniform_int_distribution<int>(0, c_Longest)(random),
                         Qt::Uninitialized);
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        paths.push_back(Put(bytes));
        expected += SampleContent::Md5(bytes);
    }
    for (std::size_t count : {1, 2, 3, 4, 5, 7, 15, 16, 17, 33, 64, 70, 100, c_Files}) {
        DigestEngine engine;
        std::vector<DigestEngine::Ticket> files;
        for (std::size_t i = 0; i < count; ++i)
            files.push_back(engine.Add(paths[i]));
        QCOMPARE(engine.Count(), count);
        for (std::size_t i = 0; i < count; ++i)
            QVERIFY2(
                engine.Take(files[i], GoOn).Md5 == expected[static_cast<int>(i)],
                qPrintable(QStringLiteral("file %1 of %2, seed %3").arg(i).arg(count).arg(seed)));
        QCOMPARE(engine.Count(), std::size_t{0});
    }
}

void DigestEngineTest::WhatCannotBeReadIsNotOpened()
{
    // Who opens a pipe for reading waits until somebody writes.
    QString const pipe = Folder.filePath("pipe");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QString const link = Folder.filePath("link");
    QVERIFY(QFile::link(Folder.filePath("nowhere"), link));

    DigestEngine engine;
    for (QString const& path : {pipe, link, Folder.path(), Folder.filePath("missing"), QString()}) {
        Digest const digest = engine.Take(engine.Add(path), GoOn);
        QVERIFY2(!digest.Opened && digest.Md5.isEmpty(), qPrintable(path));
    }
}

void DigestEngineTest::ItIsAskedForEachBlockInItsOrder()
{
    for (int const blocks : {0, 1, 2, 100}) {
        for (int const more : {0, 1}) {
            DigestEngine engine;
            auto const file = engine.Add(Put(SampleContent::Bytes(
                blocks * static_cast<int>(Launcher::FileDigest::c_BlockBytes) + more)));
            int questions = 0;
            engine.Take(file, [&] {
                ++questions;
                return true;
            });
            QCOMPARE(questions, blocks + more);
        }
    }
}

void DigestEngineTest::AStoppedFileIsIncomplete()
{
    DigestEngine engine;
    int questions = 0;
    Digest const digest = engine.Take(engine.Add(Put(SampleContent::Bytes(1'000'000))),
                                      [&] { return ++questions < 3; });
    QVERIFY(digest.Opened && !digest.Complete);
    QCOMPARE(questions, 3);
    QVERIFY(digest.Md5.isEmpty());
}

void DigestEngineTest::FilesThatNobodyTakesHoldNothingUp()
{
    QByteArray const bytes = SampleContent::Bytes(1000);
    QString const path = Put(bytes);
    DigestEngine engine;
    for (int i = 0; i < 100; ++i)
        engine.Add(path);
    QCOMPARE(engine.Take(engine.Add(path), GoOn).Md5, SampleContent::Md5(bytes));
}

/// The best of some tries: another process may have the processor meanwhile.
void DigestEngineTest::AStopEndsItWithin50Milliseconds()
{
    constexpr qint64 c_Milliseconds = 50;

    qint64 best = c_Milliseconds + 1;
    for (int i = 0; i < 10 && best > c_Milliseconds; ++i) {
        QElapsedTimer clock;
        {
            DigestEngine engine;
            auto const files = AddHuge(engine);
            engine.Take(files.front(), [&] {
                clock.start();
                return false;
            });
        }
        best = std::min(best, clock.elapsed());
    }
    QVERIFY2(best <= c_Milliseconds, qPrintable(QString::number(best)));
}

void DigestEngineTest::AFileThatCannotBeReadYetIsAskedForAllTheSame()
{
#ifdef F_SETLEASE
    QFile file(Put(SampleContent::Bytes(1'000'000)));
    QVERIFY(file.open(QIODevice::ReadWrite));
    ::signal(SIGIO, SIG_IGN); // tells of the other one who wants the file, and who has to wait
    QCOMPARE(::fcntl(file.handle(), F_SETLEASE, F_WRLCK), 0);
    DigestEngine engine;
    auto const ticket = engine.Add(file.fileName());
    QTRY_VERIFY(::fcntl(file.handle(), F_GETLEASE) != F_WRLCK);
    int questions = 0;
    Digest const digest = engine.Take(ticket, [&] { return ++questions < 3; });
    QCOMPARE(::fcntl(file.handle(), F_SETLEASE, F_UNLCK), 0);
    QVERIFY(digest.Opened && !digest.Complete);
    QCOMPARE(questions, 3);
#else
    QSKIP("nothing here keeps a file from being read");
#endif
}

void DigestEngineTest::AFileThatShrinksComesToAnEnd()
{
    QString const path = Folder.filePath("large");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(64 << 20));
    DigestEngine engine;
    auto const large = engine.Add(path);
    bool isCut = false;
    Digest const digest = engine.Take(large, [&] {
        isCut = isCut || file.resize(1 << 20);
        return true;
    });
    QVERIFY(isCut && digest.Opened);
}

void DigestEngineTest::AFileThatGrowsIsHashedToItsEnd()
{
    constexpr int c_Before = 8 << 20;

    QByteArray const bytes = SampleContent::Bytes(c_Before + 1);
    QString const path = Put(bytes.left(c_Before));
    DigestEngine engine;
    bool isGrown = false;
    Digest const digest = engine.Take(engine.Add(path), [&] {
        QFile file(path);
        isGrown = isGrown || (file.open(QIODevice::Append) && file.write(bytes.right(1)) == 1);
        return true;
    });
    // The growth may come behind the last look.
    QVERIFY(isGrown && digest.Complete);
    QVERIFY(digest.Md5 == SampleContent::Md5(bytes) ||
            digest.Md5 == SampleContent::Md5(bytes.left(c_Before)));
}

/// Every lane is in a file that never comes to an end here.
void DigestEngineTest::AFileBehindLargerOnesIsHashedMeanwhile()
{
    QByteArray const bytes = SampleContent::Bytes(1000);
    DigestEngine engine;
    AddHuge(engine);
    QCOMPARE(engine.Take(engine.Add(Put(bytes)), GoOn).Md5, SampleContent::Md5(bytes));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DigestEngineTest)
#include "tst_DigestEngine.moc"
