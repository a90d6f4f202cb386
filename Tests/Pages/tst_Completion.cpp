#include "Tests/Pages/CompletionShell.hpp"
#include "Tests/Pages/ProgramHelp.hpp"
#include "Tests/Pages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The built completions in the shells that they are for.
class CompletionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheWordAtHandIsCompleted_data() { AddShells(); }
    void TheWordAtHandIsCompleted();
    void EveryWordOfTheHelpIsOffered_data() { AddShells(); }
    void EveryWordOfTheHelpIsOffered();
    void FilesAndFoldersAreOfferedWhereTheyBelong_data() { AddShells(); }
    void FilesAndFoldersAreOfferedWhereTheyBelong();

private:
    using Row = QPair<QString, QString>;

    static void AddShells();
    /// What each line of a program completes to, words with blanks between them.
    static void Check(QString const& p_Program, QVector<Row> const& p_Rows);
    static QString Sorted(QStringList p_Words)
    {
        p_Words.sort();
        p_Words.removeDuplicates();
        return p_Words.join(' ');
    }
};

void CompletionTest::AddShells()
{
    QTest::addColumn<QString>("shell");
    for (QString const& shell : CompletionShell::Names())
        QTest::newRow(qPrintable(shell)) << shell;
}

void CompletionTest::Check(QString const& p_Program, QVector<Row> const& p_Rows)
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    QStringList lines;
    for (Row const& row : p_Rows)
        lines += p_Program + ' ' + row.first;
    CompletionShell completion(shell, VARNHOLT_BUILT_PAGES "/" +
                                          CompletionShell::BuiltFile(shell, p_Program));
    QVector<QStringList> const offers = completion.Offers(lines);
    QCOMPARE(completion.Complaints, QString());
    for (int i = 0; i < lines.size(); ++i) {
        QStringList offered = offers[i];
        // Where it knows of nothing else, zsh offers options before one asks for them.
        if (!lines[i].section(' ', -1).startsWith('-'))
            offered = offered.filter(QRegularExpression("^[^-]"));
        QVERIFY2(offered.join(' ') == p_Rows[i].second,
                 qPrintable(lines[i] + ": " + offered.join(' ')));
    }
}

void CompletionTest::TheWordAtHandIsCompleted()
{
    Check("varnholt-host",
          {
              {"in", "info install"},
              {"--color never --json -q inst", "install"},
              {"--color=never in", "info install"},
              {"--settings install in", "info install"}, // there it is no command
              {"--content-url http://[::1]:80/ in", "info install"},
              {"--content-url=http://a:80/ config color al", "always"},
              {"update ", ""},
              {"update --js", "--json"},
              {"uninstall --de", "--delete-files --dev-channel"},
              {"update --del", ""}, // it is of another command
              {"--color ", "always auto never"},
              {"--color=", "always auto never"},
              {"--color=a", "always auto"},
              {"--content-url ", ""},
              {"play --account ", ""},
              {"locale ", ""},
              {"config ",
               "ca-file color connect-timeout connections content-password content-url "
               "content-user dev-channel https-mirrors limit-rate log-file module netrc-file "
               "offline proxy retry-for trust-key wrapper"},
              {"config offline ", "false true"},
              {"config limit-rate ", ""},
              {"config content-password ", ""},
              {"--limit-rate ", ""},
              {"update --content-p", ""}, // there is no such option
              {"check --qui", "--quick --quiet"},
              {"config color ", "always auto never"},
              {"--settings x config --json dev-channel ", "false true"},
              {"config content-url ", ""},
              {"config color auto ", ""},
              {"help in", "info install"},
          });
    Check("varnholt-publish", {
                                  {"bu", "build"},
                                  {"--ver", "--version"},
                                  {"build --ver", ""}, // it stands before the command only
                                  {"build --source a --re", "--realmlist --rehash"},
                                  {"rules --output", ""}, // it is of other commands
                                  {"build --platform ", "mac win"},
                                  {"rules --platform=w", "win"},
                                  {"diff --players ", ""},
                                  {"serve --root list ", ""},
                              });
}

void CompletionTest::EveryWordOfTheHelpIsOffered()
{
    for (QString const& program : ProgramHelp::Programs()) {
        ProgramHelp const help(program);
        QCOMPARE(help.Commands.size() > 7, ProgramHelp::HasCommands(program));
        QVERIFY(help.Options.contains("--version"));
        QVector<Row> rows{{"", Sorted(help.Commands)}, {"-", Sorted(help.Options)}};
        for (QString const& command : help.Commands) {
            ProgramHelp const own(program, command);
            bool const hasAll = own.Text.contains("\nOptions of every command");
            rows += {command + " -", Sorted(own.Options + (hasAll ? help.Options : QStringList()))};
        }
        Check(program, rows);
    }
}

void CompletionTest::FilesAndFoldersAreOfferedWhereTheyBelong()
{
    QTemporaryDir const folder;
    QVERIFY(WriteFile(folder.filePath("file.txt"), "text"));
    QVERIFY(QDir(folder.path()).mkdir("games"));
    QString const start = folder.path() + '/';
    QString const all = "file.txt games";
    Check("varnholt-host", {{"install " + start, "games"},
                            {"--log-file " + start, all},
                            {"update --settings=" + start, all},
                            {"config module " + start, all},
                            {"--ca-file " + start, all},
                            {"config netrc-file " + start, all},
                            {"locale " + start, ""}});
    Check("varnholt-publish", {{"build --source " + start, "games"},
                               {"build --rules " + start, all},
                               {"diff --output=" + start, "games"},
                               {"serve --root " + start, "games"},
                               {"build --name " + start, ""}});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::CompletionTest)
#include "tst_Completion.moc"
