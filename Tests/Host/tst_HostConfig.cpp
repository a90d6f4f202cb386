#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// The options that the settings file keeps.
class HostConfigTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { Game = std::make_unique<HostGame>(); }
    void cleanup() { Game.reset(); }

    void AnOptionIsKeptShownAndRemoved_data();
    void AnOptionIsKeptShownAndRemoved();
    void TheListHoldsWhatIsSet();
    void FileNamesAreKeptAbsolute();
    void AnUnknownKeyIsRefused();
    void ABadValueIsRefused_data();
    void ABadValueIsRefused();
    void TheRestOfTheSettingsStays();
    void SettingsThatCannotBeWrittenAreNamed();

    void KeptOptionsAreUsed();
    void AValueKeptThatIsNoneCanBeTakenAway();

private:
    Outcome Run(QStringList const& p_Arguments) const
    {
        return HostProcess(*Game, p_Arguments).Finish();
    }
    QString Config(QStringList const& p_Arguments) const
    {
        Outcome const outcome = Run(QStringList("config") + p_Arguments);
        return outcome.Status == 0 && outcome.Err.isEmpty() ? outcome.Out : "failed";
    }

    std::unique_ptr<HostGame> Game;
};

void HostConfigTest::AnOptionIsKeptShownAndRemoved_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    auto const row = [](char const* p_Key, QString const& p_Value) {
        QTest::newRow(p_Key) << p_Key << p_Value;
    };
    row("module", "/somewhere/a, b/libÉté.so");
    row("content-url", "http://content.example:81/a/");
    row("content-user", "ann@example.net, \"Ann\"");
    row("netrc-file", "/etc/passwd");
    row("limit-rate", "1.5MiB");
    row("connections", "8");
    row("retry-for", "2h");
    row("connect-timeout", "0.5");
    row("proxy", "socks5h://[::1]:1080");
    row("https-mirrors", "true");
    row("offline", "false");
    row("dev-channel", "true");
    row("log-file", "/somewhere/=;#.log");
    row("color", "always");
}

void HostConfigTest::AnOptionIsKeptShownAndRemoved()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QCOMPARE(Config({key}), QString("\n"));
    QCOMPARE(Config({key, value}), QString());
    // Quiet, or a log file that cannot be written would be told.
    Outcome const shown = Run({"-q", "config", key});
    QCOMPARE(shown.Out, value + '\n');
    QCOMPARE(shown.Status, 0);
    QCOMPARE(JsonReport(Run({"--json", "config", key}).Out).Last()["value"].toString(), value);
    QCOMPARE(Run({"-q", "config", key, ""}).Status, 0);
    QCOMPARE(Config({key}), QString("\n"));
    QVERIFY(!ReadFile(Game->SettingsFile).contains(key.toUtf8()));
}

void HostConfigTest::TheListHoldsWhatIsSet()
{
    QCOMPARE(Config({}), QString());
    QCOMPARE(Config({"color", "never"}), QString());
    QCOMPARE(Config({"content-url", "http://content.example/"}), QString());
    QCOMPARE(Config({"limit-rate", "500k"}), QString());
    QCOMPARE(Config({}),
             QString("content-url=http://content.example/\nlimit-rate=500k\ncolor=never\n"));
    JsonReport const report(Run({"--json", "config"}).Out);
    QCOMPARE(report.Texts("option", "key"), (QStringList{"content-url", "limit-rate", "color"}));
    QCOMPARE(report.Texts("option", "value"),
             (QStringList{"http://content.example/", "500k", "never"}));
}

void HostConfigTest::FileNamesAreKeptAbsolute()
{
    QCOMPARE(Config({"module", "./x/../mine.so"}), QString());
    QCOMPARE(Config({"module"}), Game->Base + "mine.so\n");
    QCOMPARE(Config({"log-file", "mine.log"}), QString());
    QCOMPARE(Config({"log-file"}), Game->Base + "mine.log\n");
    QVERIFY(WriteFile(Game->Base + "mine.pem", "-----BEGIN CERTIFICATE-----\n"));
    for (char const* const key : {"ca-file", "netrc-file"}) {
        QCOMPARE(Config({key, "mine.pem"}), QString());
        QCOMPARE(Config({key}), Game->Base + "mine.pem\n");
    }
}

void HostConfigTest::AnUnknownKeyIsRefused()
{
    for (QStringList const& arguments :
         {QStringList{"-q", "config", "fly"}, QStringList{"-q", "config", "fly", "high"},
          QStringList{"-q", "config", "options/color", "never"}}) {
        Outcome const outcome = Run(arguments);
        QVERIFY2(outcome.Err.contains("there is no setting \"" + arguments[2] +
                                      "\"; choose one of: module, content-url, "),
                 qPrintable(outcome.Err));
        QCOMPARE(outcome.Out, QString());
        QCOMPARE(outcome.Status, 2);
    }
    QVERIFY(!QFileInfo::exists(Game->SettingsFile));
}

void HostConfigTest::ABadValueIsRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    auto const row = [](char const* p_Key, char const* p_Value) {
        QTest::newRow(p_Value) << p_Key << p_Value;
    };
    row("content-url", "content.example");
    row("content-url", "ftp://content.example/");
    row("content-url", "http://content.example/?a");
    row("dev-channel", "maybe");
    row("dev-channel", "TRUE");
    row("color", "pink");
    row("limit-rate", "fast");
    row("connections", "0");
    row("retry-for", "soon");
    row("connect-timeout", "0s");
    row("ca-file", "/no such file");
    row("ca-file", "/etc/passwd");
    row("proxy", "ftp://proxy.example");
    row("offline", "yes");
}

void HostConfigTest::ABadValueIsRefused()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    Outcome const outcome = Run({"-q", "config", key, value});
    QVERIFY2(outcome.Err.startsWith("varnholt-host: the setting \"" + key + "\" is not usable: "),
             qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains(value), qPrintable(outcome.Err));
    QVERIFY(IsOneSentence(outcome.Err));
    QCOMPARE(outcome.Status, 2);
    QCOMPARE(Config({}), QString());
}

void HostConfigTest::TheRestOfTheSettingsStays()
{
    Game->AddFiles().Publish().PutInstalled();
    QStringList const before = Game->SettingKeys();
    QCOMPARE(Config({"color", "never"}), QString());
    QStringList expected = before + QStringList("options/color");
    expected.sort();
    QCOMPARE(Game->SettingKeys(), expected);
    QCOMPARE(Run({"-q", "uninstall"}).Status, 0);
    QCOMPARE(Config({}), QString("color=never\n"));
}

void HostConfigTest::SettingsThatCannotBeWrittenAreNamed()
{
    Game->SettingsFile = "/proc/no such folder/host.ini";
    Outcome const outcome = Run({"-q", "config", "color", "never"});
    QVERIFY2(outcome.Err.contains("the settings file " + Game->SettingsFile), "no name");
    QCOMPARE(outcome.Status, 7);
}

void HostConfigTest::KeptOptionsAreUsed()
{
    QCOMPARE(Config({"color", "always"}), QString());
    QVERIFY(Run({"-q", "update"}).Err.contains('\x1b'));
    QVERIFY(!Run({"-q", "update", "--color=never"}).Err.contains('\x1b'));
    Game->AddFiles().Publish();
    QCOMPARE(Config({"log-file", "kept.log"}), QString());
    QCOMPARE(Run({"-q", "locales"}).Status, 0);
    QVERIFY(ReadFile(Game->Base + "kept.log").contains("[varnholt."));
    QCOMPARE(Config({"module", "nothing.so"}), QString());
    Outcome const outcome = Run({"status"});
    QVERIFY2(outcome.Err.contains(Game->Base + "nothing.so"), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 9);
    QCOMPARE(Run({"--module", LoadedPlugin::Path(), "status"}).Status, 0);
}

void HostConfigTest::AValueKeptThatIsNoneCanBeTakenAway()
{
    Game->SetSetting("options/limit-rate", "fast");
    Outcome const outcome = Run({"status"});
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains("the setting \"limit-rate\" is not usable: \"fast\""),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 2);
    QCOMPARE(Run({"--limit-rate=1k", "status"}).Status, 0);
    QCOMPARE(Config({"limit-rate"}), QString("fast\n"));
    QCOMPARE(Config({"limit-rate", ""}), QString());
    QCOMPARE(Run({"status"}).Status, 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostConfigTest)
#include "tst_HostConfig.moc"
