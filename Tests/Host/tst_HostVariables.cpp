#include "Host/Cli/ConfigCommand.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// The options of the environment, and which of several comes first.
class HostVariablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { Game = std::make_unique<HostGame>(); }
    void cleanup() { Game.reset(); }

    void EachOptionHasItsVariable_data();
    void EachOptionHasItsVariable();
    void TheVariableOfTheSettingsNamesThem();
    void AnEmptyVariableIsNone_data();
    void AnEmptyVariableIsNone();
    void ABadVariableIsAUsageError_data();
    void ABadVariableIsAUsageError();

private:
    Outcome Run(QStringList const& p_Arguments) const
    {
        return HostProcess(*Game, p_Arguments).Finish();
    }
    /// Without options that name settings and server.
    Outcome RunPlainly(QStringList const& p_Arguments) const
    {
        return HostProcess(*Game, QStringList(), p_Arguments).Finish();
    }

    std::unique_ptr<HostGame> Game;
};

void HostVariablesTest::EachOptionHasItsVariable_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QStringList>("command");
    auto const row = [](char const* p_Variable, char const* p_Value, char const* p_Option,
                        QStringList const& p_Command) {
        AddRow(p_Variable, QByteArray(p_Variable), p_Value, p_Option, p_Command);
    };
    row("VARNHOLT_MODULE", "nothing.so", "--module=nothing.so", {"status"});
    row("VARNHOLT_YES", "true", "--yes", {"uninstall", "--delete-files"});
    row("VARNHOLT_DELETE_FILES", "true", "--delete-files", {"uninstall"});
    row("VARNHOLT_ACCOUNT", "me", "--account=me", {"play"});
    row("VARNHOLT_JSON", "true", "--json", {"config"});
    row("VARNHOLT_QUIET", "true", "--quiet", {"locales"});
    row("VARNHOLT_VERBOSE", "true", "--verbose", {"locales", "-q"});
    row("VARNHOLT_COLOR", "always", "--color=always", {"pause"});
    row("VARNHOLT_CONTENT_URL", "http://127.0.0.1:1/", "--content-url=http://127.0.0.1:1/",
        {"locales"});
}

/// The variable does what the option does, and that is not what happens without both.
void HostVariablesTest::EachOptionHasItsVariable()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, value);
    QFETCH(QString, option);
    QFETCH(QStringList, command);
    Game->AddFiles().Publish();
    Game->SetSetting("options/color", "never");
    auto const run = [&](QStringList const& p_Arguments, QString const& p_Value) {
        ScopedVariable const scoped(variable.constData(), p_Value.toUtf8());
        ScopedVariable const server("VARNHOLT_CONTENT_BASE_URL", Game->Server.BaseUrl().toUtf8());
        Game->PutInstalled();
        Outcome const outcome =
            HostProcess(*Game, {"--settings", Game->SettingsFile}, p_Arguments).Finish();
        QString said = QStringLiteral("%1 %2 %3")
                           .arg(outcome.Status)
                           .arg(outcome.Out, outcome.Err)
                           .remove(QRegularExpression("\"time\":\"[^\"]*\""));
        return said.replace(QRegularExpression("[\\d.]+ ms"), "ms");
    };
    QString const without = run(command, "");
    QString const withOption = run(command + QStringList(option), "");
    QVERIFY(withOption != without);
    QCOMPARE(run(command, value), withOption);
}

void HostVariablesTest::TheVariableOfTheSettingsNamesThem()
{
    Game->AddFiles().PutInstalled();
    ScopedVariable const variable("VARNHOLT_SETTINGS", Game->SettingsFile.toUtf8());
    QVERIFY(RunPlainly({"status"}).Out.contains(Game->Folder));
    QStringList const other{"status", "--settings", Game->Base + "other.ini"};
    QCOMPARE(RunPlainly(other).Out, QString("Mists of Pandaria is not installed\n"));
}

void HostVariablesTest::AnEmptyVariableIsNone_data()
{
    QTest::addColumn<QByteArray>("variable");
    QByteArrayList names{"SETTINGS", "YES", "JSON", "QUIET", "VERBOSE"};
    for (QString const& key : Host::ConfigCommand::Keys())
        names += key.toUpper().replace('-', '_').toUtf8();
    QVERIFY(names.contains("LIMIT_RATE") && names.contains("CONTENT_PASSWORD"));
    for (QByteArray const& name : names)
        AddRow(name, "VARNHOLT_" + name);
}

void HostVariablesTest::AnEmptyVariableIsNone()
{
    QFETCH(QByteArray, variable);
    ScopedVariable const scoped(variable.constData(), "");
    Outcome const outcome = RunPlainly({"status"});
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Out, QString("Mists of Pandaria is not installed\n"));
}

void HostVariablesTest::ABadVariableIsAUsageError_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    AddRow("colour", QByteArray("VARNHOLT_COLOR"), QByteArray("pink"));
    AddRow("json", QByteArray("VARNHOLT_JSON"), QByteArray("maybe"));
    AddRow("rate", QByteArray("VARNHOLT_LIMIT_RATE"), QByteArray("fast"));
    AddRow("file", QByteArray("VARNHOLT_CA_FILE"), QByteArray("/no such file"));
    AddRow("user", QByteArray("VARNHOLT_CONTENT_USER"), QByteArray("a:b"));
}

void HostVariablesTest::ABadVariableIsAUsageError()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);
    ScopedVariable const scoped(variable.constData(), value);
    Outcome const outcome = RunPlainly({"status"});
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 2);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostVariablesTest)
#include "tst_HostVariables.moc"
