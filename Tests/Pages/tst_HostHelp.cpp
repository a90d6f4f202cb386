#include "Host/Core/Failures/ExitStatus.hpp"
#include "Tests/Pages/ProgramHelp.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// What varnholt-host tells of itself.
class HostHelpTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryCommandsHelpEndsWithAnExampleOfIt();
    void TheProgramsHelpEndsWithTheExitStatuses();

private:
    static constexpr char c_Program[] = "varnholt-host";
};

void HostHelpTest::EveryCommandsHelpEndsWithAnExampleOfIt()
{
    QStringList const commands = ProgramHelp(c_Program).Commands;
    QStringList const options = ProgramHelp(c_Program).Options;
    QVERIFY(commands.contains("install") && options.contains("--limit-rate"));
    for (QString const& command : commands) {
        QStringList const lines =
            ProgramHelp(c_Program, command).Text.trimmed().split('\n', Qt::SkipEmptyParts);
        QVERIFY2(lines.size() > 2, qPrintable(command));
        QCOMPARE(lines[lines.size() - 2], QString("Example:"));
        QString const example = lines.last() + ' ';
        for (QString const& option : options)
            QVERIFY2(option.size() == 2 || lines.filter(option).size() >= 1, qPrintable(option));
        QVERIFY2(example.startsWith("  varnholt-host " + command + ' '), qPrintable(example));
    }
}

void HostHelpTest::TheProgramsHelpEndsWithTheExitStatuses()
{
    QString const help = ProgramHelp(c_Program).Text;
    QString const end = help.mid(help.indexOf("\nExit status:\n"));
    for (Host::ExitStatus const& row : Host::c_ExitStatuses) {
        QString const line = QStringLiteral("\n  %1 ").arg(row.Status);
        QVERIFY2(end.contains(line), qPrintable(line));
        QVERIFY2(end.contains(QString(' ') + row.Meaning + '\n'), row.Meaning);
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostHelpTest)
#include "tst_HostHelp.moc"
