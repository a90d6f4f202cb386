#include "Host/Core/Failures/ExitStatus.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Tests/HostPages/CompletionShell.hpp"
#include "Tests/HostPages/ProgramHelp.hpp"
#include "Tests/HostPages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The manual page that is built from the help.
class HostManPageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void FormattersFindNothingWrong_data();
    void FormattersFindNothingWrong();
    void ItHasTheSectionsOfAManualPage();
    void EveryCommandOfTheHelpIsInIt();
    void EveryOptionOfTheHelpIsInIt();
    void EveryVariableOfTheHelpIsInIt();
    void EveryExitStatusIsInIt();
    void EveryFailureIsInItWithItsStatusAndRemedy();
    void EveryFailureEndsWithAListedStatus();
    void TheSameSourcesMakeTheSamePages();

private:
    /// The source of one section without marks of the formatter, one line.
    QString Section(QString const& p_Name) const;
    static QString Readable(QString const& p_Source);

    QString Page;
};

void HostManPageTest::initTestCase()
{
    Page = QString::fromUtf8(ReadFile(VARNHOLT_MAN_PAGE));
    QVERIFY(!Page.isEmpty());
}

QString HostManPageTest::Readable(QString const& p_Source)
{
    QString text = p_Source;
    text.replace("\\-", "-").replace("\\(aq", "'").replace("\\(dq", "\"");
    text.replace(QRegularExpression("\\\\f[BIR]|\\\\&"), "");
    return text.replace('\n', ' ');
}

QString HostManPageTest::Section(QString const& p_Name) const
{
    QString const section = Page.section(".SH \"" + p_Name + "\"\n", 1);
    return Readable(section.section("\n.SH", 0, 0)) + ' ';
}

void HostManPageTest::FormattersFindNothingWrong_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("man") << "man" << QStringList{"--warnings", "-E", "UTF-8", "-l"};
    QTest::newRow("groff") << "groff" << QStringList{"-man", "-ww", "-z"};
    QTest::newRow("mandoc") << "mandoc" << QStringList{"-T", "lint"};
}

void HostManPageTest::FormattersFindNothingWrong()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    if (!ToolRun::IsInstalled(program))
        QSKIP("the formatter is not installed");
    ToolRun const run(program, arguments << VARNHOLT_MAN_PAGE);
    QString said = run.Err;
    if (program == "man") {
        QVERIFY2(run.Out.contains("SYNOPSIS"), qPrintable(run.Out));
        QCOMPARE(run.Status, 0);
    } else {
        said += run.Out;
    }
    // A date would make another page of the same sources.
    QStringList complaints = said.split('\n', Qt::SkipEmptyParts);
    complaints = complaints.filter(QRegularExpression("^(?!.*WARNING: missing date, using \"\")"));
    QCOMPARE(complaints, QStringList());
}

void HostManPageTest::ItHasTheSectionsOfAManualPage()
{
    QStringList sections;
    for (QString const& line : Page.split('\n'))
        if (line.startsWith(".SH "))
            sections += line.mid(4).remove('"');
    QCOMPARE(sections,
             (QStringList{"NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "OPTIONS", "ENVIRONMENT",
                          "FILES", "SIGNALS", "EXIT STATUS", "FAILURES", "EXAMPLES"}));
    QVERIFY2(Section("FILES").contains("varnholt/host.ini"), qPrintable(Section("FILES")));
    QVERIFY2(Section("SIGNALS").contains("SIGUSR1"), qPrintable(Section("SIGNALS")));
}

void HostManPageTest::EveryCommandOfTheHelpIsInIt()
{
    QStringList const commands = ProgramHelp().Commands;
    QVERIFY(commands.contains("install"));
    for (QString const& command : commands) {
        ProgramHelp const help(command);
        QString const own = Section("COMMANDS").section(".TP " + command + ' ', 1);
        QVERIFY2(!own.isEmpty(), qPrintable(command));
        for (QString const& name : help.Arguments + help.Options)
            if (name != "-h" && name != "--help")
                QVERIFY2(own.contains(".TP " + name + ' '), qPrintable(command + ' ' + name));
        QString const example = help.Text.trimmed().section('\n', -1).trimmed();
        QVERIFY2(Page.contains("\\fB" + QString(example).replace('-', "\\-").replace('~', "\\(ti")),
                 qPrintable(example));
    }
}

void HostManPageTest::EveryOptionOfTheHelpIsInIt()
{
    QStringList const options = ProgramHelp().Options;
    QVERIFY(options.contains("--yes") && options.contains("-y"));
    QString const section = Section("OPTIONS");
    for (QString const& option : options)
        QVERIFY2(section.contains(".TP " + option + ' ') ||
                     section.contains(".TP " + option + ',') ||
                     section.contains(", " + option + ' '),
                 qPrintable(option));
}

void HostManPageTest::EveryVariableOfTheHelpIsInIt()
{
    ProgramHelp const help;
    QStringList variables = help.Variables;
    for (QString const& command : help.Commands)
        variables += ProgramHelp(command).Variables;
    QVERIFY(variables.contains("VARNHOLT_SETTINGS") && variables.contains("VARNHOLT_ACCOUNT"));
    variables += "VARNHOLT_CONTENT_PASSWORD"; // has no option
    for (QString const& variable : variables)
        QVERIFY2(Section("ENVIRONMENT").contains(".TP " + variable + ' '), qPrintable(variable));
}

void HostManPageTest::EveryExitStatusIsInIt()
{
    for (Host::ExitStatus const& row : Host::c_ExitStatuses) {
        QString const text = QStringLiteral(".TP %1 %2.").arg(row.Status).arg(row.Meaning);
        QVERIFY2(Section("EXIT STATUS").contains(text, Qt::CaseInsensitive), qPrintable(text));
    }
}

void HostManPageTest::EveryFailureIsInItWithItsStatusAndRemedy()
{
    QString const section = Section("FAILURES");
    QVERIFY(Host::Failure::Kinds().contains(Host::FailureKind::Interrupted));
    for (Host::FailureKind const kind : Host::Failure::Kinds()) {
        Host::Failure const failure{kind, "...", "..."};
        QString const text = QStringLiteral(".TP %1 (%2) %3; %4. ")
                                 .arg(failure.Identifier(), QString::number(failure.ExitStatus()),
                                      failure.Sentence(), failure.Remedy());
        QVERIFY2(section.contains(text), qPrintable(text));
    }
}

void HostManPageTest::EveryFailureEndsWithAListedStatus()
{
    QVector<int> listed;
    for (Host::ExitStatus const& row : Host::c_ExitStatuses)
        listed += row.Status;
    for (Host::FailureKind const kind : Host::Failure::Kinds()) {
        Host::Failure const failure{kind, {}, {}};
        QVERIFY2(listed.contains(failure.ExitStatus()), qPrintable(failure.Identifier()));
    }
}

void HostManPageTest::TheSameSourcesMakeTheSamePages()
{
    QTemporaryDir const folder;
    QStringList made;
    for (char const* const name : {"man/page", "bash", "zsh", "fish"})
        made += folder.filePath(name);
    ToolRun const run(VARNHOLT_PAGES_PROGRAM, made);
    QCOMPARE(run.Err, QString());
    QCOMPARE(run.Status, 0);
    QStringList built{VARNHOLT_MAN_PAGE};
    for (QString const& shell : CompletionShell::Names())
        built += CompletionShell::BuiltFile(shell);
    for (int i = 0; i < made.size(); ++i) {
        QVERIFY(!ReadFile(made[i]).isEmpty());
        QCOMPARE(ReadFile(made[i]), ReadFile(built[i]));
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostManPageTest)
#include "tst_HostManPage.moc"
