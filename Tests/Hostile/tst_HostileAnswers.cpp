#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QtTest>

namespace Varnholt::TestSupport {

/// Documents that are too big, too deep or no text.
class HostileAnswersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AManifestOfTwoHundredThousandEntriesIsWorkedThrough();
    void ADeepManifestIsReadAsFarAsItIsOne();
    void AManifestThatIsTooDeepIsRefused();
    void AHostListOfAMegabyteIsDrawnFrom();
    void AHostNameOfAMegabyteIsNoServer();
    void ARealmListEndsAtANul();
    void ARealmListOfTenMegabytesIsALineLikeAnyOther();
};

void HostileAnswersTest::AManifestOfTwoHundredThousandEntriesIsWorkedThrough()
{
    constexpr int c_Entries = 200000;
    constexpr int c_Files = 500;
    constexpr qint32 c_KeepIfPresent = 0x80;

    HostileGame game;
    for (int i = 0; i < c_Files; ++i)
        game.Put(QStringLiteral("Many/%1/%2").arg(i % 10).arg(i), "there");
    for (int i = 0; i < c_Entries; ++i)
        game.AddEntry(QStringLiteral("Many/%1/%2").arg(i % 10).arg(i % c_Files), c_KeepIfPresent,
                      i % 2 == 0);
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Requested().filter("hostile").isEmpty());
}

void HostileAnswersTest::ADeepManifestIsReadAsFarAsItIsOne()
{
    constexpr int c_Levels = 1000;

    HostileGame game;
    game.Begin();
    QByteArray manifest = game.Content.ManifestBytes().trimmed();
    manifest.chop(1);
    manifest += ",\"deep\":" + QByteArray(c_Levels, '[') + QByteArray(c_Levels, ']') + '}';
    QVERIFY(QJsonDocument::fromJson(manifest).isObject());
    game.Server.Serve(game.Content.ManifestPath(), manifest);
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostileAnswersTest::AManifestThatIsTooDeepIsRefused()
{
    constexpr int c_Levels = 1000000;

    HostileGame game;
    game.Begin();
    game.Server.Serve(game.Content.ManifestPath(), "{\"content\":" + QByteArray(c_Levels, '[') +
                                                       QByteArray(c_Levels, ']') + '}');
    QCOMPARE(game.Install(), QString("content-invalid"));
    QCOMPARE(game.FilesOnDisk(), QStringList());
}

void HostileAnswersTest::AHostListOfAMegabyteIsDrawnFrom()
{
    constexpr int c_Bytes = 1024 * 1024;

    HostileGame game;
    game.Begin();
    QByteArray hosts = game.Server.Host().toUtf8();
    while (hosts.size() < c_Bytes)
        hosts += ' ' + hosts;
    game.Server.Serve("/cdns.info", hosts);
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostileAnswersTest::AHostNameOfAMegabyteIsNoServer()
{
    constexpr int c_Bytes = 1024 * 1024;

    HostileGame game;
    game.Begin();
    game.Server.Serve("/cdns.info", QByteArray(c_Bytes, 'a'));
    QString const end = game.Install();
    QCOMPARE(end, QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostileAnswersTest::ARealmListEndsAtANul()
{
    HostileGame game;
    game.Content.RealmList = QByteArray("SET realmlist \"a\"\0SET portal \"b\"", 32);
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Read("WTF/Config.wtf"),
             QByteArray("SET locale \"enUS\"\nSET installLocale \"enUS\"\nSET realmlist \"a\"\n"));
}

void HostileAnswersTest::ARealmListOfTenMegabytesIsALineLikeAnyOther()
{
    constexpr int c_Bytes = 10 * 1024 * 1024;

    HostileGame game;
    game.Content.RealmList = "SET realmlist \"" + QByteArray(c_Bytes, 'a') + '"';
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    QByteArray const expected =
        "SET locale \"enUS\"\nSET installLocale \"enUS\"\n" + game.Content.RealmList + '\n';
    QVERIFY(game.Read("WTF/Config.wtf") == expected);
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(game.Read("WTF/Config.wtf") == expected);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostileAnswersTest)
#include "tst_HostileAnswers.moc"
