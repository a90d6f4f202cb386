#include "Tests/HostPages/CompletionShell.hpp"
#include "Tests/HostPages/ProgramHelp.hpp"
#include "Tests/HostPages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The built completions in the shells that they are for.
class HostCompletionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheWordAtHandIsCompleted_data() { AddShells(); }
    void TheWordAtHandIsCompleted();
    void EveryCommandOfTheHelpIsOffered_data() { AddShells(); }
    void EveryCommandOfTheHelpIsOffered();
    void EveryOptionOfTheHelpIsOffered_data() { AddShells(); }
    void EveryOptionOfTheHelpIsOffered();
    void FilesAndFoldersAreOfferedWhereTheyBelong_data() { AddShells(); }
    void FilesAndFoldersAreOfferedWhereTheyBelong();

private:
    static void AddShells();
    static QStringList Sorted(QStringList p_Words)
    {
        p_Words.sort();
        return p_Words;
    }
};

void HostCompletionTest::AddShells()
{
    QTest::addColumn<QString>("shell");
    for (QString const& shell : CompletionShell::Names())
        QTest::newRow(qPrintable(shell)) << shell;
}

void HostCompletionTest::TheWordAtHandIsCompleted()
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    QVector<QPair<QString, QString>> const rows{
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
        {"config ", "ca-file color connect-timeout connections content-password content-url "
                    "content-user dev-channel https-mirrors limit-rate log-file module netrc-file "
                    "offline proxy retry-for wrapper"},
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
    };
    QStringList lines;
    for (auto const& row : rows)
        lines += "varnholt-host " + row.first;
    CompletionShell completion(shell, CompletionShell::BuiltFile(shell));
    QVector<QStringList> const offers = completion.Offers(lines);
    QCOMPARE(completion.Complaints, QString());
    for (int i = 0; i < rows.size(); ++i) {
        QStringList offered = offers[i];
        // Where it knows of nothing else, zsh offers options before one asks for them.
        if (lines[i].endsWith(' '))
            offered = offered.filter(QRegularExpression("^[^-]"));
        QVERIFY2(offered.join(' ') == rows[i].second,
                 qPrintable(lines[i] + ": " + offered.join(' ')));
    }
}

void HostCompletionTest::EveryCommandOfTheHelpIsOffered()
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    QStringList const commands = ProgramHelp().Commands;
    QVERIFY(commands.contains("install"));
    CompletionShell completion(shell, CompletionShell::BuiltFile(shell));
    QCOMPARE(completion.Offers({"varnholt-host "}), {Sorted(commands)});
    QCOMPARE(completion.Complaints, QString());
}

void HostCompletionTest::EveryOptionOfTheHelpIsOffered()
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    ProgramHelp const help;
    QVERIFY(help.Options.contains("--yes") && help.Options.contains("-y"));
    QStringList lines{"varnholt-host -"};
    QVector<QStringList> expected{Sorted(help.Options)};
    for (QString const& command : help.Commands) {
        QStringList options = help.Options + ProgramHelp(command).Options;
        options.removeDuplicates();
        lines += "varnholt-host " + command + " -";
        expected += Sorted(options);
    }
    CompletionShell completion(shell, CompletionShell::BuiltFile(shell));
    QCOMPARE(completion.Offers(lines), expected);
    QCOMPARE(completion.Complaints, QString());
}

void HostCompletionTest::FilesAndFoldersAreOfferedWhereTheyBelong()
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    QTemporaryDir const folder;
    QVERIFY(WriteFile(folder.filePath("file.txt"), "text"));
    QVERIFY(QDir(folder.path()).mkdir("games"));
    QString const start = folder.path() + '/';
    QStringList const all{"file.txt", "games"};
    CompletionShell completion(shell, CompletionShell::BuiltFile(shell));
    QVector<QStringList> const offers = completion.Offers(
        {"varnholt-host install " + start, "varnholt-host --log-file " + start,
         "varnholt-host update --settings=" + start, "varnholt-host config module " + start,
         "varnholt-host --ca-file " + start, "varnholt-host config netrc-file " + start,
         "varnholt-host locale " + start});
    QCOMPARE(completion.Complaints, QString());
    QCOMPARE(offers, (QVector<QStringList>{QStringList("games"), all, all, all, all, all, {}}));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostCompletionTest)
#include "tst_HostCompletion.moc"
