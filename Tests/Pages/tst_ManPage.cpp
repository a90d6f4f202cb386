#include "Host/Core/Failures/ExitStatus.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Tests/Pages/CompletionShell.hpp"
#include "Tests/Pages/ProgramHelp.hpp"
#include "Tests/Pages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The manual pages that are built from the help.
class ManPageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FormattersFindNothingWrong_data();
    void FormattersFindNothingWrong();
    void ItHasTheSectionsOfAManualPage();
    void EveryCommandOfTheHelpIsInIt();
    void EveryOptionOfTheHelpIsInIt();
    void EveryVariableOfTheHelpIsInIt();
    void EveryExitStatusIsInIt();
    void EveryFailureIsInItWithAListedStatusAndItsRemedy();
    void TheSameSourcesMakeTheSamePages();
    void ATemplateThatAsksForWhatThereIsNotIsRefused();

private:
    static QString File(QString const& p_Program)
    {
        return VARNHOLT_BUILT_PAGES "/man/man1/" + p_Program + ".1";
    }
    /// The source of one section without marks of the formatter, one line.
    static QString Section(QString const& p_Program, QString const& p_Name);
    static QString Readable(QString const& p_Source);

    QString const c_Host = "varnholt-host";
};

QString ManPageTest::Readable(QString const& p_Source)
{
    QString text = p_Source;
    text.replace("\\-", "-").replace("\\(aq", "'").replace("\\(dq", "\"").replace("\\(ti", "~");
    text.replace(QRegularExpression("\\\\f[BIR]|\\\\&"), "");
    return text.replace('\n', ' ');
}

QString ManPageTest::Section(QString const& p_Program, QString const& p_Name)
{
    QString const page = QString::fromUtf8(ReadFile(File(p_Program)));
    QString const section = page.section(".SH \"" + p_Name + "\"\n", 1);
    return Readable(section.section("\n.SH", 0, 0)) + ' ';
}

void ManPageTest::FormattersFindNothingWrong_data()
{
    QTest::addColumn<QString>("formatter");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("man") << "man" << QStringList{"--warnings", "-E", "UTF-8", "-l"};
    QTest::newRow("groff") << "groff" << QStringList{"-man", "-ww", "-z"};
    QTest::newRow("mandoc") << "mandoc" << QStringList{"-T", "lint"};
}

void ManPageTest::FormattersFindNothingWrong()
{
    QFETCH(QString, formatter);
    QFETCH(QStringList, arguments);
    if (!ToolRun::IsInstalled(formatter))
        QSKIP("the formatter is not installed");
    for (QString const& program : ProgramHelp::Programs()) {
        ToolRun const run(formatter, arguments + QStringList(File(program)));
        QString said = run.Err;
        if (formatter == "man") {
            QVERIFY2(run.Out.contains("SYNOPSIS"), qPrintable(run.Out));
            QCOMPARE(run.Status, 0);
        } else {
            said += run.Out;
        }
        // A date would make another page of the same sources; mandoc knows pages that are
        // installed.
        static QRegularExpression const others(
            "^(?!.*(WARNING: missing date, using \"\"|STYLE: referenced manual not found))");
        QStringList const complaints = said.split('\n', Qt::SkipEmptyParts).filter(others);
        QCOMPARE(complaints, QStringList());
    }
}

void ManPageTest::ItHasTheSectionsOfAManualPage()
{
    QMap<QString, QString> const expected{
        {c_Host, "NAME SYNOPSIS DESCRIPTION COMMANDS OPTIONS ENVIRONMENT FILES SIGNATURES SIGNALS "
                 "EXIT STATUS FAILURES EXAMPLES SEE ALSO"},
        {"varnholt-publish",
         "NAME SYNOPSIS DESCRIPTION COMMANDS OPTIONS EXIT STATUS EXAMPLES SEE ALSO"},
        {"varnholt-window",
         "NAME SYNOPSIS DESCRIPTION OPTIONS ENVIRONMENT KEYS FILES SIGNALS SEE ALSO"}};
    for (QString const& program : ProgramHelp::Programs()) {
        QStringList sections;
        for (QByteArray const& line : ReadFile(File(program)).split('\n'))
            if (line.startsWith(".SH "))
                sections += QString(line.mid(4)).remove('"');
        QCOMPARE(sections.join(' '), expected[program]);
    }
    QVERIFY(Section(c_Host, "FILES").contains("varnholt/host.ini"));
    QVERIFY(Section(c_Host, "SIGNALS").contains("SIGUSR1"));
}

void ManPageTest::EveryCommandOfTheHelpIsInIt()
{
    for (QString const& program : ProgramHelp::Programs()) {
        QStringList const commands = ProgramHelp(program).Commands;
        QCOMPARE(commands.size() > 7, ProgramHelp::HasCommands(program));
        QString const all = Section(program, "COMMANDS");
        for (QString const& command : commands) {
            ProgramHelp const help(program, command);
            QString const own = all.section(".TP " + command + ' ', 1);
            QVERIFY2(!own.isEmpty(), qPrintable(command));
            for (QString const& name : help.Arguments + help.Options)
                if (name != "-h" && name != "--help")
                    QVERIFY2(own.contains(".TP " + name.section('(', 0, 0) + ' '),
                             qPrintable(command + ' ' + name));
            QString const example = help.Text.section("\nExample", 1).section('\n', 1, 1);
            QVERIFY2(example.startsWith("  " + program + ' ' + command) &&
                         Section(program, "EXAMPLES").contains(example),
                     qPrintable(example));
        }
    }
}

void ManPageTest::EveryOptionOfTheHelpIsInIt()
{
    for (QString const& program : ProgramHelp::Programs()) {
        QStringList const options = ProgramHelp(program).Options;
        QVERIFY(options.contains("--help") && options.contains("-h"));
        QString const section = Section(program, "OPTIONS");
        for (QString const& option : options)
            QVERIFY2(section.contains(".TP " + option + ' ') ||
                         section.contains(".TP " + option + ',') ||
                         section.contains(", " + option + ' '),
                     qPrintable(option));
    }
}

void ManPageTest::EveryVariableOfTheHelpIsInIt()
{
    ProgramHelp const help(c_Host);
    QStringList variables = help.Variables;
    for (QString const& command : help.Commands)
        variables += ProgramHelp(c_Host, command).Variables;
    QVERIFY(variables.contains("VARNHOLT_SETTINGS") && variables.contains("VARNHOLT_ACCOUNT"));
    variables += "VARNHOLT_CONTENT_PASSWORD"; // has no option
    for (QString const& variable : variables)
        QVERIFY2(Section(c_Host, "ENVIRONMENT").contains(".TP " + variable + ' '),
                 qPrintable(variable));
}

void ManPageTest::EveryExitStatusIsInIt()
{
    for (Host::ExitStatus const& row : Host::c_ExitStatuses) {
        QString const text = QStringLiteral(".TP %1 %2.").arg(row.Status).arg(row.Meaning);
        QVERIFY2(Section(c_Host, "EXIT STATUS").contains(text, Qt::CaseInsensitive),
                 qPrintable(text));
    }
}

void ManPageTest::EveryFailureIsInItWithAListedStatusAndItsRemedy()
{
    QString const section = Section(c_Host, "FAILURES");
    QVERIFY(Host::Failure::Kinds().contains(Host::FailureKind::Interrupted));
    for (Host::FailureKind const kind : Host::Failure::Kinds()) {
        Host::Failure const failure{kind, "...", "..."};
        QString const text = QStringLiteral(".TP %1 (%2) %3; %4. ")
                                 .arg(failure.Identifier(), QString::number(failure.ExitStatus()),
                                      failure.Sentence(), failure.Remedy());
        QVERIFY2(section.contains(text), qPrintable(text));
        QString const status = QStringLiteral(".TP %1 ").arg(failure.ExitStatus());
        QVERIFY2(Section(c_Host, "EXIT STATUS").contains(status), qPrintable(text));
    }
}

void ManPageTest::TheSameSourcesMakeTheSamePages()
{
    QTemporaryDir const folder;
    QString const made = folder.filePath("made/page");
    QString const templates = VARNHOLT_PAGE_TEMPLATES;
    for (QString const& program : ProgramHelp::Programs()) {
        QMap<QString, QString> pages{{program + ".1.in", File(program)}};
        for (QString const& shell : CompletionShell::Names())
            pages["completion." + shell + ".in"] =
                VARNHOLT_BUILT_PAGES "/" + CompletionShell::BuiltFile(shell, program);
        for (auto page = pages.begin(); page != pages.end(); ++page) {
            ToolRun const run(VARNHOLT_PAGES_PROGRAM,
                              {program, templates + '/' + page.key(), made});
            QCOMPARE(run.Err, QString());
            QCOMPARE(run.Status, 0);
            QVERIFY(!ReadFile(made).isEmpty());
            QCOMPARE(ReadFile(made), ReadFile(page.value()));
        }
    }
}

void ManPageTest::ATemplateThatAsksForWhatThereIsNotIsRefused()
{
    QTemporaryDir const folder;
    QString const page = folder.filePath("page");
    QVERIFY(WriteFile(page + ".in", "@PROGRAM@ @NOTHING@"));
    ToolRun const run(VARNHOLT_PAGES_PROGRAM, {c_Host, page + ".in", page});
    QCOMPARE(run.Status, 1);
    QVERIFY2(run.Err.contains("NOTHING") && run.Err.contains(page + ".in"), qPrintable(run.Err));
    QVERIFY(!QFile::exists(page));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ManPageTest)
#include "tst_ManPage.moc"
