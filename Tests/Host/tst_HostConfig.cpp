#include "Host/Cli/KeptOption.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/ScopedVariable.hpp"
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
    void EveryOptionIsListedWithItsOrigin();
    void TheListTellsNoPassword();
    void DefaultsAreThoseOfASession();
    void FileNamesAreKeptAbsolute();
    void YesAndNoHaveTheSameWordsEverywhere_data();
    void YesAndNoHaveTheSameWordsEverywhere();
    void AnUnknownKeyIsRefused();
    void ABadValueIsRefused_data();
    void ABadValueIsRefused();
    void TheRestOfTheSettingsStays();

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

void HostConfigTest::EveryOptionIsListedWithItsOrigin()
{
    QCOMPARE(Config({"limit-rate", "500k"}), QString());
    QCOMPARE(Config({"color", "never"}), QString());
    QCOMPARE(Config({"connections", "8"}), QString());
    ScopedVariable const kept("VARNHOLT_CONNECTIONS", "16");
    ScopedVariable const variable("VARNHOLT_OFFLINE", "1");
    QStringList const expected{"module=" + LoadedPlugin::Path() + "  (default)",
                               "content-url=" + Game->Server.BaseUrl() + "  (command line)",
                               "content-user=  (default)",
                               "content-password=  (default)",
                               "netrc-file=~/.netrc  (default)",
                               "limit-rate=500k  (settings file)",
                               "connections=16  (environment)",
                               "retry-for=90s  (command line)",
                               "connect-timeout=15s  (default)",
                               "ca-file=  (default)",
                               "proxy=  (default)",
                               "https-mirrors=true  (command line)",
                               "offline=true  (environment)",
                               "dev-channel=false  (default)",
                               "trust-key=  (default)",
                               "wrapper=  (default)",
                               "log-file=  (default)",
                               "color=never  (settings file)"};
    QStringList const options{"--list", "--retry-for=90s", "--https-mirrors"};
    QCOMPARE(Config(options).split('\n', Qt::SkipEmptyParts), expected);
    JsonReport const report(Run(QStringList{"--json", "config"} + options).Out);
    QStringList lines;
    for (QJsonObject const& line : report.Of("option"))
        lines += line["key"].toString() + '=' + line["value"].toString() + "  (" +
                 line["origin"].toString() + ')';
    QCOMPARE(lines, expected);
    QCOMPARE(Run({"config", "--list", "color"}).Status, 2);
}

void HostConfigTest::TheListTellsNoPassword()
{
    QString const line = "content-password=(set)  (%1)\n";
    Game->SetSetting("options/content-password", "S3cret");
    QVERIFY(Config({"--list"}).contains(line.arg("settings file")));
    ScopedVariable const variable("VARNHOLT_CONTENT_PASSWORD", "S4cret");
    QString const list = Config({"--list"});
    QVERIFY2(list.contains(line.arg("environment")) && !list.contains("cret\n"), qPrintable(list));
    ScopedVariable const server("VARNHOLT_CONTENT_BASE_URL", "http://content.example/");
    Outcome const plain =
        HostProcess(*Game, {"--settings", Game->SettingsFile}, {"config", "--list"}).Finish();
    QVERIFY2(plain.Out.contains("content-url=http://content.example/  (environment)\n"),
             qPrintable(plain.Out));
}

void HostConfigTest::DefaultsAreThoseOfASession()
{
    Host::Choice said;
    for (Host::KeptOption const& option : Host::KeptOption::All()) {
        QString const value = option.Default();
        bool const names = option.IsFile() || QLatin1String(option.Name) == "content-url";
        QVERIFY2(value.isEmpty() || names || option.Fault(value).isEmpty(), option.Name);
        if (!value.isEmpty() && !names)
            option.Apply(said, value);
    }
    Host::Choice const plain;
    QCOMPARE(said.Options.BytesPerSecond, plain.Options.BytesPerSecond);
    QCOMPARE(said.Options.Connections, plain.Options.Connections);
    QCOMPARE(said.Options.RetryForMilliseconds, plain.Options.RetryForMilliseconds);
    QCOMPARE(said.Options.ConnectMilliseconds, plain.Options.ConnectMilliseconds);
    QCOMPARE(said.Options.Offline, plain.Options.Offline);
    QCOMPARE(said.Options.HttpsMirrors, plain.Options.HttpsMirrors);
    QCOMPARE(said.Options.UseDevChannel, plain.Options.UseDevChannel);
    QCOMPARE(said.Colors, plain.Colors);
}

void HostConfigTest::YesAndNoHaveTheSameWordsEverywhere_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("meaning");
    for (char const* const word : {"yes", "ON"})
        QTest::newRow(word) << word << "true";
    for (char const* const word : {"No", "0"})
        QTest::newRow(word) << word << "false";
    for (char const* const word : {"enable", "t"})
        QTest::newRow(word) << word << "";
}

void HostConfigTest::YesAndNoHaveTheSameWordsEverywhere()
{
    QFETCH(QString, word);
    QFETCH(QString, meaning);
    QString const fault = meaning.isEmpty() ? '"' + word + "\" is neither true" : QString();
    int const status = meaning.isEmpty() ? 2 : 0;
    auto const check = [&](Outcome const& p_Outcome) {
        return p_Outcome.Status == status && p_Outcome.Err.contains(fault);
    };
    QVERIFY(check(Run({"config", "offline", word})));
    QCOMPARE(Config({"offline"}), meaning + '\n');
    QVERIFY(check(Run({"config", "--offline=" + word})));
    QVERIFY(check(Run({"config", "--quiet=" + word})));
    {
        ScopedVariable const variable("VARNHOLT_DEV_CHANNEL", word.toUtf8());
        QVERIFY(check(Run({"config"})));
    }
    Game->SetSetting("options/offline", word);
    QVERIFY(check(Run({"status"})));
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
    QCOMPARE(Run({"-q", "config", "contnt-url", "http://content.example/"}).Err,
             QString("varnholt-host: there is no setting \"contnt-url\"; did you mean "
                     "\"content-url\"?\n"));
}

void HostConfigTest::ABadValueIsRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    auto const row = [](char const* p_Key, char const* p_Value) {
        QTest::newRow(p_Value) << p_Key << p_Value;
    };
    row("content-url", "ftp://content.example/");
    row("dev-channel", "maybe");
    row("color", "pink");
    row("limit-rate", "fast");
    row("ca-file", "/etc/passwd");
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
