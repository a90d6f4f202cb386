#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// What a run of scripts/mirror-bucket has said, all of rclone's requests among it.
struct Copying {
    int Status = -1;
    QString Log;

    /// Targets of the uploads in their order, each with its Cache-Control, a blank between them.
    QStringList Uploads() const
    {
        QStringList uploads;
        for (QString const& request : Log.split("HTTP REQUEST")) {
            static QRegularExpression const c_Put("PUT (\\S+) HTTP/1.1");
            static QRegularExpression const c_Control("Cache-Control: ([^\\r\\n]*)");
            QString const path = c_Put.match(request).captured(1);
            if (!path.isEmpty())
                uploads += path + ' ' + c_Control.match(request).captured(1);
        }
        return uploads;
    }
};

} // namespace

/// scripts/mirror-bucket, to a server of rclone's own.
class BucketMirrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ACopyIsTheTree();
    void AChangeOfKeyIsTakenOver();
    void EachFileComesInItsOrderAndWithItsTimeToBeKept();
    void AVersionOfTheSameSizeIsTakenOver();
    void WhatIsCutOffLeavesTheVersion_data();
    void WhatIsCutOffLeavesTheVersion();
    void RemovesNothingUnlessItIsToldTo();
    void AWrongCallIsAUsageError();

private:
    static Copying Run(QStringList const& p_Arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(VARNHOLT_SOURCE_FOLDER "/scripts/mirror-bucket", p_Arguments);
        if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAll())};
    }
    Copying Mirror(QStringList const& p_More = {}) const
    {
        return Run(QStringList{Game->Options.Output, "storage:games"} + p_More);
    }
    Tree Copy() const { return TreeOf(Game->Temporary.filePath("served/games")); }

    std::unique_ptr<PublishedGame> Game;
    std::unique_ptr<QProcess> Server;
    std::vector<std::unique_ptr<ScopedVariable>> Variables;
};

void BucketMirrorTest::init()
{
    Game = std::make_unique<PublishedGame>();
    Game->Put("Data/a", "a");
    Game->Options.RealmListAddress = "logon.example.net";
    Game->Options.Signing = SigningKeys().Options();
    Game->Publish("build_1");

    QString const served = Game->Temporary.filePath("served");
    QVERIFY(QDir().mkpath(served + "/games"));
    Server = std::make_unique<QProcess>();
    Server->setProcessChannelMode(QProcess::MergedChannels);
    Server->start(VARNHOLT_RCLONE_FILE, {"serve", "webdav", served, "--addr", "127.0.0.1:0"});
    QByteArray said;
    while (!said.contains("started on http://") && Server->waitForReadyRead())
        said += Server->readAll();
    QString const url = QString::fromUtf8(said).section("started on ", 1).section('\n', 0, 0);
    QVERIFY2(url.startsWith("http://127.0.0.1:"), said.constData());
    auto const set = [this](char const* p_Name, QString const& p_Value) {
        Variables.push_back(std::make_unique<ScopedVariable>(p_Name, p_Value.toUtf8()));
    };
    set("RCLONE_CONFIG_STORAGE_TYPE", "webdav");
    set("RCLONE_CONFIG_STORAGE_URL", url);
    set("RCLONE_CONFIG", Game->Temporary.filePath("rclone.conf"));
}

void BucketMirrorTest::cleanup()
{
    Variables.clear();
    Server->kill();
    Server->waitForFinished();
}

void BucketMirrorTest::ACopyIsTheTree()
{
    Game->Put("empty", "");
    Game->Options.DevChannel = true;
    Game->Options.RealmListAddress.reset();
    Game->Publish("build_2");
    Tree const published = Game->Published();
    QVERIFY(WriteFile(Game->OutputPath(".varnholt-publish.new/files/1"), "unfinished"));
    Copying const copying = Mirror();
    QVERIFY2(copying.Status == 0, qPrintable(copying.Log));
    QCOMPARE(Copy(), published);
}

void BucketMirrorTest::AChangeOfKeyIsTakenOver()
{
    QCOMPARE(Mirror().Status, 0);
    SigningKeys::Change(*Game);
    QCOMPARE(Mirror().Status, 0);
    QCOMPARE(Copy(), Game->Published());
    QVERIFY(Copy().count("pelmora_app/trust-key.minisig") == 1);
}

void BucketMirrorTest::EachFileComesInItsOrderAndWithItsTimeToBeKept()
{
    Copying const copying = Mirror({"--dump", "headers", "--transfers", "1"});
    QVERIFY2(copying.Status == 0, qPrintable(copying.Log));
    QStringList uploads = copying.Uploads();
    QCOMPARE(uploads.size(), 10);
    QStringList content{uploads.takeFirst(), uploads.takeFirst()};
    content.sort();
    QString const forEver = " public, max-age=31536000, immutable";
    QStringList expected;
    for (char const* const text : {"a", "the game"})
        expected += "/games/" + PublishedGame::ContentPath(text) + forEver;
    expected.sort();
    QCOMPARE(content, expected);
    QCOMPARE(uploads.takeFirst(),
             QString("/games/pelmora_app/builds/build_1/info.json public, max-age=86400"));
    QStringList version{uploads.takeLast(), uploads.takeLast()};
    for (QStringList* const step : {&uploads, &version})
        step->sort();
    QCOMPARE(version, QStringList({"/games/pelmora_app/version.json public, max-age=60",
                                   "/games/pelmora_app/version.json.minisig public, max-age=60"}));
    QCOMPARE(uploads, QStringList({"/games/cdns.info public, max-age=300",
                                   "/games/cdns.info.minisig public, max-age=300",
                                   "/games/pelmora_app/builds/build_1/info.json.minisig "
                                   "public, max-age=300",
                                   "/games/pelmora_app/realmlist.info public, max-age=300",
                                   "/games/pelmora_app/realmlist.info.minisig public, "
                                   "max-age=300"}));
}

void BucketMirrorTest::AVersionOfTheSameSizeIsTakenOver()
{
    QCOMPARE(Mirror().Status, 0);
    Game->Publish("build_2");
    QCOMPARE(Mirror().Status, 0);
    QCOMPARE(Copy().at("pelmora_app/version.json"), QByteArray("{\"build\":\"build_2\"}"));
    // What lies there is not sent again.
    Copying const again = Mirror({"--dump", "headers"});
    QCOMPARE(again.Uploads().filter("/files/"), QStringList());
    QCOMPARE(again.Uploads().filter("/info.json "), QStringList());
}

void BucketMirrorTest::WhatIsCutOffLeavesTheVersion_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("content") << PublishedGame::ContentPath("new content");
    QTest::newRow("manifest") << "pelmora_app/builds/build_2/info.json";
    QTest::newRow("hosts") << "cdns.info";
}

void BucketMirrorTest::WhatIsCutOffLeavesTheVersion()
{
    QFETCH(QString, obstacle);
    QCOMPARE(Mirror().Status, 0);
    Game->Put("Data/b", "new content");
    Game->Publish("build_2");
    // A folder where the file is to go.
    QString const served = Game->Temporary.filePath("served/games/");
    QFile::remove(served + obstacle);
    QVERIFY(QDir().mkpath(served + obstacle + "/x"));
    QVERIFY(Mirror({"--retries", "1", "--low-level-retries", "1"}).Status > 0);
    QCOMPARE(Copy().at("pelmora_app/version.json"), QByteArray("{\"build\":\"build_1\"}"));
    QVERIFY(QDir(served + obstacle).removeRecursively());
    QCOMPARE(Mirror().Status, 0);
    QCOMPARE(Copy(), Game->Published());
}

void BucketMirrorTest::RemovesNothingUnlessItIsToldTo()
{
    QCOMPARE(Mirror().Status, 0);
    QString const gone = PublishedGame::ContentPath("a");
    QVERIFY(QFile::remove(Game->OutputPath(gone)));
    QCOMPARE(Mirror().Status, 0);
    QVERIFY(Copy().count(gone) == 1);
    QVERIFY(WriteFile(Game->Temporary.filePath("served/games/of others"), "x"));
    QCOMPARE(Run({"--delete", Game->Options.Output, "storage:games"}).Status, 0);
    QVERIFY(Copy().count(gone) == 0);
    QVERIFY(Copy().count("of others") == 1);
}

void BucketMirrorTest::AWrongCallIsAUsageError()
{
    Copying const copying = Run({Game->Options.Output});
    QCOMPARE(copying.Status, 2);
    QVERIFY2(copying.Log.contains("scripts/mirror-bucket FROM TO"), qPrintable(copying.Log));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::BucketMirrorTest)
#include "tst_BucketMirror.moc"
