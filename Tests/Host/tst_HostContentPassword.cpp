#include "Host/Core/Settings/HostSettings.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/Terminal.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QStringList const c_Config{"config", "content-password"};
QByteArray const c_Password = "S3cret";

} // namespace

/// The password of the content server: how it is taken, and where it is not found.
class HostContentPasswordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { Game = std::make_unique<PlayedGame>(); }
    void cleanup() { Game.reset(); }

    void ItIsReadFromStandardInputAndKept_data();
    void ItIsReadFromStandardInputAndKept();
    void NoPasswordIsNotKept_data();
    void NoPasswordIsNotKept();
    void AListTellsOnlyThatThereIsOne();
    void AnEmptyOneRemovesIt();
    void TheFileStaysItsOwnersAlone();
    void SettingsThatCannotBeWrittenAreNamed();
    void ItIsNotShownOnATerminal();
    void CtrlCGivesTheTerminalBack();
    void NothingThatIsToldHoldsIt_data();
    void NothingThatIsToldHoldsIt();
    void TheGameDoesNotGetIt();

private:
    Outcome Run(QStringList const& p_Arguments, QByteArray const& p_Input = {}) const
    {
        return HostProcess(*Game, p_Arguments).Finish(p_Input);
    }
    QString Kept() const
    {
        return Host::HostSettings(Game->SettingsFile)
            .Value(Host::HostSettings::c_PasswordKey)
            .toString();
    }

    std::unique_ptr<PlayedGame> Game;
};

void HostContentPasswordTest::ItIsReadFromStandardInputAndKept_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("kept");
    QTest::newRow("a line") << QByteArray("S3cret\n") << "S3cret";
    QTest::newRow("without an end") << QByteArray("S3cret") << "S3cret";
    QTest::newRow("of another system") << QByteArray("S3cret\r\n") << "S3cret";
    QTest::newRow("the first of two") << QByteArray("S3cret\nother\n") << "S3cret";
    QTest::newRow("blanks") << QByteArray(" S3 cret \n") << " S3 cret ";
    QTest::newRow("odd") << QByteArray("@S3,cr;e=t\"\\%1 é\n") << QString("@S3,cr;e=t\"\\%1 é");
}

void HostContentPasswordTest::ItIsReadFromStandardInputAndKept()
{
    QFETCH(QByteArray, input);
    QFETCH(QString, kept);
    QVERIFY(SetMode(Game->SettingsFile, 0644));
    Outcome const outcome = Run(c_Config, input);
    QCOMPARE(outcome.Err + outcome.Out, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(Kept(), kept);
    QCOMPARE(ModeOf(Game->SettingsFile), 0600);
}

void HostContentPasswordTest::NoPasswordIsNotKept_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("the end") << QByteArray();
    QTest::newRow("an empty line") << QByteArray("\n");
}

void HostContentPasswordTest::NoPasswordIsNotKept()
{
    QFETCH(QByteArray, input);
    QCOMPARE(Run(c_Config, c_Password + '\n').Status, 0);
    Outcome const outcome = Run(c_Config, input);
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains("no password was given"), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 2);
    QCOMPARE(Kept(), QString(c_Password));
}

void HostContentPasswordTest::AListTellsOnlyThatThereIsOne()
{
    QVERIFY(!Run({"config"}).Out.contains("content-password"));
    QCOMPARE(Run(c_Config, c_Password + '\n').Status, 0);
    QCOMPARE(Run({"config"}).Out, QString("content-password=(set)\n"));
    JsonReport const report(Run({"--json", "config"}).Out);
    QCOMPARE(report.Texts("option", "key"), QStringList("content-password"));
    QCOMPARE(report.Texts("option", "value"), QStringList("(set)"));
}

void HostContentPasswordTest::AnEmptyOneRemovesIt()
{
    QCOMPARE(Run(c_Config, c_Password + '\n').Status, 0);
    Outcome const outcome = Run(c_Config + QStringList(""));
    QCOMPARE(outcome.Err + outcome.Out, QString());
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(!ReadFile(Game->SettingsFile).contains("content-password="),
             ReadFile(Game->SettingsFile).constData());
    QCOMPARE(Run({"config"}).Out, QString());
}

void HostContentPasswordTest::TheFileStaysItsOwnersAlone()
{
    QCOMPARE(Run(c_Config, c_Password + '\n').Status, 0);
    QVERIFY(SetMode(Game->SettingsFile, 0644)); // by somebody who does not know
    QCOMPARE(Run({"config", "color", "never"}).Status, 0);
    QCOMPARE(ModeOf(Game->SettingsFile), 0600);
    Game->Put("readme.txt", "damaged");
    QVERIFY(SetMode(Game->SettingsFile, 0644));
    QCOMPARE(Run({"-q", "repair"}).Status, 0);
    QCOMPARE(ModeOf(Game->SettingsFile), 0600);
    QCOMPARE(Kept(), QString(c_Password));
}

void HostContentPasswordTest::SettingsThatCannotBeWrittenAreNamed()
{
    Game->SettingsFile = "/proc/no such folder/host.ini";
    Outcome const outcome = Run(c_Config, c_Password + '\n');
    QVERIFY2(outcome.Err.contains("the settings file " + Game->SettingsFile),
             qPrintable(outcome.Err));
    QVERIFY(!outcome.Err.contains(c_Password));
    QCOMPARE(outcome.Status, 7);
}

void HostContentPasswordTest::ItIsNotShownOnATerminal()
{
    Terminal terminal(*Game, c_Config);
    QVERIFY(terminal.WaitForLine("Password of the content server:"));
    QVERIFY(terminal.WaitUntil([&] { return !terminal.Echoes(); }));
    terminal.Type(c_Password + '\n');
    QCOMPARE(terminal.Finish(), 0);
    QCOMPARE(terminal.Screen(), (QStringList{"Password of the content server:", QString()}));
    QCOMPARE(Kept(), QString(c_Password));
}

void HostContentPasswordTest::CtrlCGivesTheTerminalBack()
{
    Terminal terminal(*Game, c_Config);
    QVERIFY(terminal.WaitForLine("Password of the content server:"));
    QVERIFY(terminal.WaitUntil([&] { return !terminal.Echoes(); }));
    terminal.Type("S3c");
    terminal.Type(QByteArray(1, Terminal::c_CtrlC));
    QVERIFY(terminal.WaitUntil([&] { return terminal.Echoes(); }));
    QCOMPARE(terminal.Finish(), 130);
    QVERIFY2(!terminal.Written().contains("S3c"), terminal.Written().constData());
    QCOMPARE(Kept(), QString());
}

void HostContentPasswordTest::NothingThatIsToldHoldsIt_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<int>("status");
    QTest::newRow("a repair") << QStringList("repair") << 0;
    QTest::newRow("a repair as JSON") << QStringList{"repair", "--json"} << 0;
    QTest::newRow("a wrong file") << QStringList{"verify", "--json"} << 4;
    QTest::newRow("mirrors") << QStringList("mirrors") << 0;
    QTest::newRow("another module") << QStringList{"--module=/nothing", "status"} << 9;
    QTest::newRow("no command") << QStringList("fly") << 2;
}

void HostContentPasswordTest::NothingThatIsToldHoldsIt()
{
    QFETCH(QStringList, command);
    QFETCH(int, status);
    QByteArray const user = "ann@example.net";
    QByteArray const basic = (user + ':' + c_Password).toBase64();
    QCOMPARE(Run(c_Config, c_Password + '\n').Status, 0);
    for (QByteArray const& variable : {QByteArray(), c_Password}) {
        Game->Put("readme.txt", "damaged");
        ScopedVariable const given("VARNHOLT_CONTENT_PASSWORD", variable);
        QStringList const options{"-v", "--log-file=host.log", "--content-user", user};
        Outcome const outcome = Run(options + command);
        QCOMPARE(outcome.Status, status);
        QByteArray const told =
            (outcome.Out + outcome.Err).toUtf8() + ReadFile(Game->Base + "host.log");
        QVERIFY(!told.isEmpty());
        QVERIFY2(!told.contains(c_Password) && !told.contains(basic), told.constData());
    }
}

void HostContentPasswordTest::TheGameDoesNotGetIt()
{
    ScopedVariable const variable("VARNHOLT_CONTENT_PASSWORD", c_Password);
    QCOMPARE(Game->Play().Status, 0);
    QVERIFY(Game->WaitForStarts(1));
    QVERIFY(Game->Environment().contains("HOME="));
    QVERIFY2(!Game->Environment().contains(c_Password), qPrintable(Game->Environment()));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostContentPasswordTest)
#include "tst_HostContentPassword.moc"
