#include "Host/Pages/BashCompletion.hpp"
#include "Host/Pages/FishCompletion.hpp"
#include "Host/Pages/ManPage.hpp"
#include "Host/Pages/ZshCompletion.hpp"
#include "Tests/HostPages/CompletionShell.hpp"
#include "Tests/HostPages/OddProgram.hpp"
#include "Tests/HostPages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using namespace Host::Pages;

/// Texts with characters that mean something to a formatter or to a shell.
class PageCharactersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void APageShowsThemAsTheyAre();
    void NoLineOfTextBecomesARequest();
    void ALongTextIsBrokenIntoLines();
    void AShellCompletesInSpiteOfThem_data();
    void AShellCompletesInSpiteOfThem();
    void FishShowsThemAsTheyAre();

private:
    static QString File(QTemporaryDir const& p_Folder, QString const& p_Shell);
};

QString PageCharactersTest::File(QTemporaryDir const& p_Folder, QString const& p_Shell)
{
    auto const write = p_Shell == "bash"  ? BashCompletion
                       : p_Shell == "zsh" ? ZshCompletion
                                          : FishCompletion;
    QString const file = p_Folder.filePath("_odd-host");
    return WriteFile(file, write(OddProgram()).toUtf8()) ? file : QString();
}

void PageCharactersTest::APageShowsThemAsTheyAre()
{
    if (!ToolRun::IsInstalled("groff"))
        QSKIP("groff is not installed");
    QTemporaryDir const folder;
    QString const file = folder.filePath("odd-host.1");
    QVERIFY(WriteFile(file, ManPage(OddProgram()).toUtf8()));
    ToolRun const run("groff", {"-man", "-ww", "-Tascii", "-P-cbou", "-rLL=500n", "-rHY=0", file});
    QCOMPARE(run.Err, QString());
    // The name's line, the option's and the command's.
    QStringList const lines = run.Out.split('\n').filter(OddText());
    QVERIFY2(lines.size() >= 6, qPrintable(run.Out));
    QVERIFY2(run.Out.contains("--choice W:X"), qPrintable(run.Out));
}

void PageCharactersTest::NoLineOfTextBecomesARequest()
{
    QStringList const requests{".TH ", ".SH ", ".TP", ".PP", ".RS", ".RE"};
    for (QString const& line : ManPage(OddProgram()).split('\n')) {
        bool const isRequest = line.startsWith('.') || line.startsWith('\'');
        QVERIFY2(!isRequest || std::any_of(requests.begin(), requests.end(),
                                           [&](QString const& p_One) {
                                               return line == p_One || (p_One.endsWith(' ') &&
                                                                        line.startsWith(p_One));
                                           }),
                 qPrintable(line));
    }
}

void PageCharactersTest::ALongTextIsBrokenIntoLines()
{
    constexpr int c_Longest = 80;

    ProgramModel model = OddProgram();
    // Wherever a line ends, the next one begins with a dot.
    model.Options[0].Help = QString(" .a").repeated(c_Longest).trimmed();
    QString const page = ManPage(model);
    QCOMPARE(page.count("\\&.a"), c_Longest);
    for (QString const& line : page.split('\n'))
        QVERIFY2(line.size() <= c_Longest || line.startsWith("\\fB") || line.startsWith("odd"),
                 qPrintable(line));
}

void PageCharactersTest::AShellCompletesInSpiteOfThem_data()
{
    QTest::addColumn<QString>("shell");
    for (QString const& shell : CompletionShell::Names())
        QTest::newRow(qPrintable(shell)) << shell;
}

void PageCharactersTest::AShellCompletesInSpiteOfThem()
{
    QFETCH(QString, shell);
    if (!ToolRun::IsInstalled(shell))
        QSKIP("the shell is not installed");
    QTemporaryDir const folder;
    CompletionShell completion(shell, File(folder, shell));
    QVector<QStringList> offers = completion.Offers(
        {"odd-host ", "odd-host -", "odd-host --choice ", "odd-host go --f", "odd-host go "});
    QCOMPARE(completion.Complaints, QString());
    for (QStringList& offered : offers)
        offered.replaceInStrings("\\", ""); // bash escapes what it offers
    QStringList const choices{"$x", "it's"};
    QCOMPARE(offers, (QVector<QStringList>{QStringList("go"),
                                           {"--choice", "--plain", "-p"},
                                           choices,
                                           QStringList("--far"),
                                           choices}));
}

void PageCharactersTest::FishShowsThemAsTheyAre()
{
    if (!ToolRun::IsInstalled("fish"))
        QSKIP("fish is not installed");
    QTemporaryDir const folder;
    ToolRun const run("fish", {"--no-config", "-c", "source $argv[1]; complete -C 'odd-host '",
                               File(folder, "fish")});
    QCOMPARE(run.Out, "go\t" + OddText() + '\n');
    QCOMPARE(run.Err, QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PageCharactersTest)
#include "tst_PageCharacters.moc"
