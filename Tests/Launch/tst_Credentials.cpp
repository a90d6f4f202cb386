#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FolderEvents.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QDirIterator>
#include <QtTest>

namespace Varnholt::TestSupport {

/// Who gets to see the account name and the password.
class CredentialsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OnlyTheOwnerMayReadTheLayout_data();
    void OnlyTheOwnerMayReadTheLayout();
    void TheyComeInAFileThatNobodyElseHasOpen();
    void TheyAreNowhereButInTheLayout();
    void TheyAreNotLogged_data();
    void TheyAreNotLogged();
};

void CredentialsTest::OnlyTheOwnerMayReadTheLayout_data()
{
    QTest::addColumn<unsigned>("mode");
    QTest::newRow("usual") << 0644u;
    QTest::newRow("everybody") << 0777u;
    QTest::newRow("read-only") << 0444u;
    QTest::newRow("private") << 0600u;
}

void CredentialsTest::OnlyTheOwnerMayReadTheLayout()
{
    QFETCH(unsigned, mode);
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(SetMode(bench.Path(LaunchBench::c_LayoutTemplate), mode));
    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(bench.Read(LaunchBench::c_Layout).contains("secret"));
    QCOMPARE(ModeOf(bench.Path(LaunchBench::c_Layout)), 0600);
}

void CredentialsTest::TheyComeInAFileThatNobodyElseHasOpen()
{
    if (!FolderEvents::c_Works)
        QSKIP("what happens to a file is not seen on this system");
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(SetMode(bench.Path(LaunchBench::c_LayoutTemplate), 0644));
    FolderEvents events(bench.Path("Interface/GlueXMl"));
    QVERIFY(bench.App.Start("me", "secret"));
    QStringList const happened = events.Of("AccountLogin.xml");
    // Made private first; then another file takes its place, whole.
    QVERIFY(happened.contains("permissions"));
    QVERIFY2(happened.last() == "new", qPrintable(happened.join(", ")));
    QCOMPARE(QDir(bench.Path("Interface/GlueXMl")).entryList(QDir::Files | QDir::Hidden),
             QStringList({"AccountLogin.lua", "AccountLogin.lua.origin", "AccountLogin.xml",
                          "AccountLogin.xml.origin"}));
}

void CredentialsTest::TheyAreNowhereButInTheLayout()
{
    LaunchBench bench;
    bench.PutTemplates();
    QStringList const settings = bench.Host.SettingKeys();
    QVERIFY(bench.App.Start("Accountant", "Sesame"));
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Game.Starts(), QStringList("[-noautolaunch64bit]"));
    QVERIFY(!bench.Game.Environment().isEmpty());
    QStringList holding;
    QDirIterator files(bench.Temporary.path(), QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QByteArray const bytes = ReadFile(files.next());
        if (bytes.contains("Accountant") || bytes.contains("Sesame"))
            holding += files.filePath();
    }
    QCOMPARE(holding, QStringList(bench.Path(LaunchBench::c_Layout)));
    QCOMPARE(bench.Host.SettingKeys(), settings);
    QCOMPARE(bench.Host.SettingChanges(), QStringList());
    QCOMPARE(bench.Host.Errors(), QStringList());
}

void CredentialsTest::TheyAreNotLogged_data()
{
    QTest::addColumn<bool>("templates");
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("executable");
    QTest::newRow("logged in") << true << false << true;
    QTest::newRow("no templates") << false << false << true;
    QTest::newRow("game runs") << true << true << true;
    QTest::newRow("executable is missing") << true << false << false;
}

void CredentialsTest::TheyAreNotLogged()
{
    QFETCH(bool, templates);
    QFETCH(bool, running);
    QFETCH(bool, executable);
    LaunchBench bench;
    if (templates)
        bench.PutTemplates();
    bench.App.GameRuns = running;
    if (!executable)
        QVERIFY(QFile::remove(bench.Game.Path));
    QVERIFY(bench.App.Start("Accountant", "Sesame"));
    QCOMPARE(bench.Log.Texts("varnholt.launch").filter("Start ").size(), 1);
    QCOMPARE(bench.Log.CountContaining("Accountant"), 0);
    QCOMPARE(bench.Log.CountContaining("Sesame"), 0);
    QCOMPARE(bench.Host.Errors(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::CredentialsTest)
#include "tst_Credentials.moc"
