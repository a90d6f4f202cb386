#include "Launcher/Application/FollowingDigest.hpp"
#include "Tests/Downloader/DownloadBench.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::FollowingDigest;

namespace {

constexpr int c_Large = 9'000'001; // bytes

} // namespace

class FollowingDigestTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void WhatGrowsIsHashedAsItGrows();
    void AnotherFileInItsPlaceIsNotMeant();
    void MoreBytesAreNotMeant();
    void AFileThatShrinksHasNoDigest();
    void AMissingFileHasNoDigest();
    void WhoWaitsCanGiveUp();

    void ALargeDownloadHasADigest_data();
    void ALargeDownloadHasADigest();
    void ASmallDownloadHasNone();

private:
    void Append(QByteArray const& p_Bytes)
    {
        QFile file(Path);
        QVERIFY(file.open(QIODevice::Append) && file.write(p_Bytes) == p_Bytes.size());
    }

    std::unique_ptr<QTemporaryDir> Folder;
    QString Path;
    QByteArray const Bytes = SampleContent::Bytes(c_Large);
};

void FollowingDigestTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Path = Folder->filePath(QStringLiteral("file"));
}

void FollowingDigestTest::WhatGrowsIsHashedAsItGrows()
{
    Append(Bytes.left(1'000'000)); // lay there before
    FollowingDigest follower(Path);
    for (int at = 1'000'000; at < Bytes.size(); at += 3'000'000) {
        follower.Follow(at);
        Append(Bytes.mid(at, 3'000'000));
    }
    follower.Follow(Bytes.size());
    auto const result = follower.CatchUp([] { return true; });
    QVERIFY(result);
    QCOMPARE(result->Md5, SampleContent::Md5(Bytes));
    QCOMPARE(result->Size, qint64{Bytes.size()});
    QVERIFY(result->IsOf(Path));
    QVERIFY(!FollowingDigest::Result().IsOf(Folder->filePath(QStringLiteral("missing"))));
}

void FollowingDigestTest::AnotherFileInItsPlaceIsNotMeant()
{
    Append(Bytes);
    QVERIFY(QFile::copy(Path, Path + QLatin1String(".other")));
    FollowingDigest follower(Path);
    follower.Follow(Bytes.size());
    auto const result = follower.CatchUp([] { return true; });
    QVERIFY(result && result->IsOf(Path));
    QVERIFY(QFile::remove(Path) && QFile::rename(Path + QLatin1String(".other"), Path));
    QVERIFY(!result->IsOf(Path));
    QVERIFY(!follower.CatchUp([] { return true; }));
}

void FollowingDigestTest::MoreBytesAreNotMeant()
{
    Append(Bytes);
    FollowingDigest follower(Path);
    follower.Follow(Bytes.size());
    auto const result = follower.CatchUp([] { return true; });
    QVERIFY(result);
    Append("more");
    QVERIFY(!result->IsOf(Path));
    QVERIFY(!follower.CatchUp([] { return true; }));
}

void FollowingDigestTest::AFileThatShrinksHasNoDigest()
{
    Append(Bytes);
    QVERIFY(QFile::resize(Path, 1000));
    FollowingDigest follower(Path);
    follower.Follow(Bytes.size());
    QVERIFY(!follower.CatchUp([] { return true; }));
}

void FollowingDigestTest::AMissingFileHasNoDigest()
{
    FollowingDigest follower(Path);
    follower.Follow(1);
    QVERIFY(!follower.CatchUp([] { return true; }));
}

void FollowingDigestTest::WhoWaitsCanGiveUp()
{
    constexpr qint64 c_Huge = 1LL << 40; // of nothing: it takes no room

    Append("a");
    QVERIFY(QFile::resize(Path, c_Huge));
    FollowingDigest follower(Path);
    follower.Follow(c_Huge);
    int questions = 0;
    QVERIFY(!follower.CatchUp([&] { return ++questions < 3; }));
    QCOMPARE(questions, 3);
}

void FollowingDigestTest::ALargeDownloadHasADigest_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("cutAfter");
    QTest::newRow("in one go") << 0 << 0;
    QTest::newRow("a part that lay there") << 5'000'000 << 0;
    QTest::newRow("a small part that lay there") << 10 << 0;
    QTest::newRow("after a drop") << 0 << 6'000'000;
}

void FollowingDigestTest::ALargeDownloadHasADigest()
{
    QFETCH(int, before);
    QFETCH(int, cutAfter);
    DownloadBench bench;
    bench.Serve(Bytes);
    if (cutAfter > 0)
        bench.Script().Then(Answer().CutAfter(cutAfter));
    if (before > 0)
        QVERIFY(bench.WriteFile(Bytes.left(before)));
    QVERIFY(bench.Run());
    QCOMPARE(bench.File(), Bytes);
    auto const digest = bench.Completion().Digest;
    QVERIFY(digest);
    QCOMPARE(digest->Md5, SampleContent::Md5(Bytes));
    QVERIFY(digest->IsOf(bench.Path));
}

void FollowingDigestTest::ASmallDownloadHasNone()
{
    DownloadBench bench;
    bench.Serve("content");
    QVERIFY(bench.Run());
    QVERIFY(!bench.Completion().Digest);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FollowingDigestTest)
#include "tst_FollowingDigest.moc"
