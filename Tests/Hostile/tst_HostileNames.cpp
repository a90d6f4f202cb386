#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Names that a shell, a format or a list could take for something else than a name.
char const* const c_Names[] = {
    "$(touch $PWNED)",
    "`touch $PWNED`",
    "a\";touch $PWNED;\"",
    "a';touch $PWNED;'",
    "a\\\";touch $PWNED;\"",
    "a\\$(touch $PWNED)",
    "a;touch $PWNED",
    "a&&touch $PWNED",
    "a|touch $PWNED",
    "a\ntouch $PWNED\n",
    "a\"\ntouch $PWNED\n\"",
    "a\rtouch $PWNED",
    "${PWNED:=x}",
    "$PWNED",
    "-rf",
    "--reference=.",
    "--",
    "-R/$(touch $PWNED)/`touch $PWNED`",
    "a b ",
    " a",
    "a\t",
    "~",
    "~root",
    "*",
    "?[!a]{b,c}",
    "<in >out 2>&1 &",
    "#a",
    "!a",
    "%s%n%1%2",
    "ToDownload.db\nreadme.txt",
};

} // namespace

class HostileNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NamesAreNamesInAWholeLife_data();
    void NamesAreNamesInAWholeLife();
    void TheFoldersNameIsANameToo();
    void AProgramOfSuchANameIsStarted();
};

void HostileNamesTest::NamesAreNamesInAWholeLife_data()
{
    QTest::addColumn<qint32>("Flags");
    QTest::addColumn<int>("Mode");
    QTest::addColumn<bool>("Streamed");
    QTest::newRow("read-only") << HostileGame::c_ReadOnly << 0444 << false;
    QTest::newRow("executable") << HostileGame::c_Executable << 0777 << false;
    QTest::newRow("first build only") << (HostileGame::c_ReadOnly | 0x20) << 0444 << false;
    QTest::newRow("streamed") << HostileGame::c_Executable << 0777 << true;
}

void HostileNamesTest::NamesAreNamesInAWholeLife()
{
    QFETCH(qint32, Flags);
    QFETCH(int, Mode);
    QFETCH(bool, Streamed);
    HostileGame game;
    for (char const* const name : c_Names)
        game.AddEntry(QString::fromUtf8(name), Flags, Streamed);
    game.Begin();

    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.WrongEntries(), QStringList());
    QCOMPARE(game.Wrong(), QStringList());
    for (char const* const name : c_Names)
        QCOMPARE(ModeOf(game.Path(name)), Mode);
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    for (char const* const name : c_Names) {
        QVERIFY(SetMode(game.Path(name), 0644));
        game.Damage(name);
    }
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.WrongEntries(), QStringList());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Play(), QString("done"));
    for (char const* const name : c_Names)
        QCOMPARE(ModeOf(game.Path(name)), Mode);
    QCOMPARE(game.Uninstall(), QString("done"));
    for (char const* const name : c_Names)
        QVERIFY2(!game.Has(name), name);
    QVERIFY(!game.WasFooled());
    QCOMPARE(game.Outside.Disturbances(), QStringList());
}

void HostileNamesTest::TheFoldersNameIsANameToo()
{
    HostileGame game;
    game.Folder =
        game.Base + "-x\";touch $PWNED;\"';touch $PWNED;'$(touch $PWNED)`touch $PWNED`\n/";
    game.AddEntry("a", HostileGame::c_ReadOnly);
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.WrongEntries(), QStringList());
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(!game.WasFooled());
    QCOMPARE(game.Outside.Disturbances(), QStringList());
}

void HostileNamesTest::AProgramOfSuchANameIsStarted()
{
    HostileGame game;
    QString const name = "$(touch $PWNED)\";touch $PWNED;\" -x";
    game.Content.Files.erase(std::remove_if(game.Content.Files.begin(), game.Content.Files.end(),
                                            [](SampleFile const& p_File) {
                                                return p_File.Path == HostileGame::Program();
                                            }),
                             game.Content.Files.end());
    game.Content.Add({name, "#!/bin/sh\nprintf %s \"$1\" >\"$0.started\"\n",
                      HostileGame::c_Executable | HostileGame::c_GameExecutable});
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
    QTRY_COMPARE(game.Read(name + ".started"), QByteArray("-noautolaunch64bit"));
    QVERIFY(!game.WasFooled());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostileNamesTest)
#include "tst_HostileNames.moc"
