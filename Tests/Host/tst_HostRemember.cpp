#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QLocalServer>
#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_Password = "S3cret phrase \xc3\xa4";
QString const c_Name = QStringLiteral("me@example.net");
QStringList const c_Account{"--account", c_Name};

} // namespace

/// Passwords in the desktop's secret store.
class HostRememberTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void ARememberedPasswordIsNotAskedForAgain();
    void AForgottenPasswordIsAskedForAgain();
    void TheEnvironmentMayWishIt();
    void EachAccountHasItsOwn();
    void EachServerHasItsOwn();
    void NoPasswordIsNotRemembered();
    void ItIsReadableNowhere();
    void AnUninstalledGameKeepsIt();
    void WithoutAStoreTheGameIsStartedAllTheSame();
    void AStoreThatIsGoneIsTold();
    void AStoreIsNotBotheredWithoutNeed();
    void ASilentStoreCanBeInterrupted();
    void ItNeedsAnAccount_data();
    void ItNeedsAnAccount();

private:
    /// Plays with an input. \return standard error
    QString Play(QStringList const& p_Options, QByteArray const& p_Input = {})
    {
        Outcome const outcome = Game->Play(p_Options, p_Input);
        if (outcome.Status != 0 || !Game->WaitForStarts(++Starts))
            return QStringLiteral("not started: ") + outcome.Err;
        return outcome.Err;
    }
    /// What the game was last told to log in with.
    QByteArray LoggedIn() const { return Game->Read(Game->Layout); }
    static QByteArray Screen(QByteArray const& p_Password, QString const& p_Name = c_Name)
    {
        return '<' + p_Name.toUtf8() + '|' + p_Password + '>';
    }

    std::unique_ptr<SecretService> Store;
    std::unique_ptr<PlayedGame> Game;
    int Starts = 0;
};

void HostRememberTest::initTestCase()
{
    SecretService const trial;
    if (!trial.Problem().isEmpty())
        QSKIP(qPrintable(trial.Problem()));
}

void HostRememberTest::init()
{
    Store = std::make_unique<SecretService>();
    Game = std::make_unique<PlayedGame>();
    Starts = 0;
}

void HostRememberTest::cleanup()
{
    Game.reset();
    Store.reset();
}

void HostRememberTest::ARememberedPasswordIsNotAskedForAgain()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), c_Password + '\n'), QString());
    QCOMPARE(LoggedIn(), Screen(c_Password));
    QCOMPARE(Play(c_Account), QString());
    QCOMPARE(LoggedIn(), Screen(c_Password));
    // What was asked for by a pipe is not taken for another one.
    QCOMPARE(Play(c_Account, "other\n"), QString());
    QCOMPARE(LoggedIn(), Screen(c_Password));
}

void HostRememberTest::AForgottenPasswordIsAskedForAgain()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "one\n"), QString());
    QCOMPARE(Game->SettingKeys().filter("remembered/").size(), 1);
    QCOMPARE(Play(c_Account + QStringList("--forget"), "two\n"), QString());
    QCOMPARE(LoggedIn(), Screen("two"));
    QCOMPARE(Game->SettingKeys().filter("remembered/"), QStringList());
    QCOMPARE(Play(c_Account, "three\n"), QString());
    QCOMPARE(LoggedIn(), Screen("three"));
}

void HostRememberTest::TheEnvironmentMayWishIt()
{
    {
        ScopedVariable const remember("VARNHOLT_REMEMBER", "true");
        QCOMPARE(Play(c_Account, "one\n"), QString());
    }
    QCOMPARE(Play(c_Account, "two\n"), QString());
    QCOMPARE(LoggedIn(), Screen("one"));
    ScopedVariable const forget("VARNHOLT_FORGET", "true");
    QCOMPARE(Play(c_Account, "two\n"), QString());
    QCOMPARE(LoggedIn(), Screen("two"));
}

void HostRememberTest::EachAccountHasItsOwn()
{
    QString const other = QStringLiteral("you@example.net");
    QCOMPARE(Play(c_Account + QStringList("--remember"), "mine\n"), QString());
    QCOMPARE(Play({"--account", other, "--remember"}, "yours\n"), QString());
    QCOMPARE(Play(c_Account), QString());
    QCOMPARE(LoggedIn(), Screen("mine"));
    QCOMPARE(Play({"--account", other}), QString());
    QCOMPARE(LoggedIn(), Screen("yours", other));
}

void HostRememberTest::EachServerHasItsOwn()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "here\n"), QString());
    ScriptedServer elsewhere;
    Game->Content.Publish(elsewhere);
    QStringList const options{"--settings", Game->SettingsFile, "--content-url",
                              elsewhere.BaseUrl()};
    QCOMPARE(HostProcess(*Game, options, QStringList("play") + c_Account).Finish("there\n").Status,
             0);
    QVERIFY(Game->WaitForStarts(++Starts));
    QCOMPARE(LoggedIn(), Screen("there"));
}

void HostRememberTest::NoPasswordIsNotRemembered()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "one\n"), QString());
    QVERIFY(Game->Play(c_Account + QStringList("--remember")).Status == 0);
    QVERIFY(Game->WaitForStarts(++Starts));
    QVERIFY(!Game->Has(Game->Layout));
    QCOMPARE(Play(c_Account), QString());
    QCOMPARE(LoggedIn(), Screen("one"));
}

void HostRememberTest::ItIsReadableNowhere()
{
    QByteArray const before = Store->BytesOnDisk();
    QCOMPARE(Play(c_Account + QStringList("--remember"), c_Password + '\n'), QString());
    QVERIFY(Store->BytesOnDisk() != before);
    QVERIFY(!Store->BytesOnDisk().contains(c_Password));
    QVERIFY(ReadFile(Game->SettingsFile).contains("remembered"));
    QVERIFY(!ReadFile(Game->SettingsFile).contains(c_Password));
    QVERIFY(!ReadFile(Game->SettingsFile).contains(c_Name.toUtf8()));
}

void HostRememberTest::AnUninstalledGameKeepsIt()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "one\n"), QString());
    QCOMPARE(HostProcess(*Game, {"-q", "uninstall"}).Finish().Status, 0);
    Game->PutInstalled();
    QCOMPARE(Play(c_Account), QString());
    QCOMPARE(LoggedIn(), Screen("one"));
}

void HostRememberTest::WithoutAStoreTheGameIsStartedAllTheSame()
{
    Store->Stop();
    Outcome const outcome =
        HostProcess(*Game, QStringList("play") + c_Account + QStringList("--remember"))
            .Finish("one\n");
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Err.startsWith("The password is not remembered: "), qPrintable(outcome.Err));
    QVERIFY(Game->WaitForStarts(++Starts));
    QCOMPARE(LoggedIn(), Screen("one"));
    QVERIFY(!ReadFile(Game->SettingsFile).contains("remembered"));
}

void HostRememberTest::AStoreThatIsGoneIsTold()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "one\n"), QString());
    Store->Stop();
    Outcome const outcome = HostProcess(*Game, QStringList("play") + c_Account).Finish("by hand\n");
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Err.startsWith("The remembered password cannot be read: "),
             qPrintable(outcome.Err));
    QVERIFY(Game->WaitForStarts(++Starts));
    QCOMPARE(LoggedIn(), Screen("by hand"));
}

void HostRememberTest::AStoreIsNotBotheredWithoutNeed()
{
    QLocalServer bus;
    QVERIFY(bus.listen(Game->Base + "bus"));
    ScopedVariable const address("DBUS_SESSION_BUS_ADDRESS",
                                 "unix:path=" + bus.fullServerName().toUtf8());
    QCOMPARE(Play(c_Account, "one\n"), QString());
    QCOMPARE(LoggedIn(), Screen("one"));
    QVERIFY(!bus.waitForNewConnection(0));
}

void HostRememberTest::ASilentStoreCanBeInterrupted()
{
    QCOMPARE(Play(c_Account + QStringList("--remember"), "one\n"), QString());
    QLocalServer bus;
    QVERIFY(bus.listen(Game->Base + "bus"));
    ScopedVariable const address("DBUS_SESSION_BUS_ADDRESS",
                                 "unix:path=" + bus.fullServerName().toUtf8());
    HostProcess host(*Game, QStringList("play") + c_Account);
    QVERIFY(bus.waitForNewConnection(TestHost::c_Timeout));
    host.Signal(SIGINT);
    QCOMPARE(host.Finish().Status, 130);
    QCOMPARE(Game->Starts(), Starts);
}

void HostRememberTest::ItNeedsAnAccount_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("to remember") << QStringList("--remember");
    QTest::newRow("to forget") << QStringList("--forget");
    QTest::newRow("and one wish") << c_Account + QStringList{"--remember", "--forget"};
}

void HostRememberTest::ItNeedsAnAccount()
{
    QFETCH(QStringList, options);
    Outcome const outcome = Game->Play(options);
    QCOMPARE(outcome.Status, 2);
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QCOMPARE(Game->Starts(), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostRememberTest)
#include "tst_HostRemember.moc"
