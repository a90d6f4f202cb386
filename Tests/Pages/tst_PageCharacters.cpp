#include "Pages/Pieces.hpp"
#include "Tests/Pages/CompletionShell.hpp"
#include "Tests/Pages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// Texts with characters that mean something to a formatter or to a shell.
class PageCharactersTest : public QObject {
    Q_OBJECT

public:
    PageCharactersTest();

private Q_SLOTS:
    void APageShowsThemAsTheyAre();
    void NoLineOfTextBecomesARequest();
    void ALongTextIsBrokenIntoLines();
    void AShellCompletesInSpiteOfThem_data();
    void AShellCompletesInSpiteOfThem();
    void FishShowsThemAsTheyAre();

private:
    /// The completion of a shell, in the folder.
    QString File(QString const& p_Shell) const;
    /// A page with all the pieces that have texts of the program.
    QString Page() const { return Pages::Filled(c_Page, Pages::PiecesOf(Program)); }

    static constexpr char c_Page[] = ".TH odd 1\n.SH NAME\n@PROGRAM@ \\- @SUMMARY@\n"
                                     ".SH COMMANDS\n@COMMANDS@.SH OPTIONS\n@OPTIONS@"
                                     ".SH EXAMPLES\n@EXAMPLES@";
    /// A command in it would make the file "odd".
    static constexpr char c_Text[] = ".dots 'quotes' \"double\" `touch odd` $(touch odd) $HOME \\n "
                                     "\\fB [x] a:b ~ ^ %1 * -- ; #";

    CLI::App Program{c_Text, "odd-host"};
    CLI::Option* Plain = nullptr;
    QTemporaryDir Folder;
};

PageCharactersTest::PageCharactersTest()
{
    CLI::Validator const choices([](std::string const&) { return ""; }, "{it's,$x}");
    auto const flag = [](int64_t) {};
    auto const value = [](std::string const&) {};
    Program.set_help_flag();
    Program.fallthrough();
    Plain = Program.add_flag_function("-p,--plain", flag, c_Text);
    Program.add_option_function<std::string>("--choice", value, c_Text)
        ->type_name("W X")
        ->check(choices);
    CLI::App* const go = Program.add_subcommand("go", c_Text);
    go->footer(std::string("Example:\n") + c_Text + '\n');
    go->add_flag_function("--far", flag, c_Text);
    go->add_option_function<std::string>("what", value, c_Text)->check(choices);
}

QString PageCharactersTest::File(QString const& p_Shell) const
{
    QString const file = Folder.filePath("_odd-host");
    QString const source =
        QString::fromUtf8(ReadFile(VARNHOLT_PAGE_TEMPLATES "/completion." + p_Shell + ".in"));
    return WriteFile(file, Pages::Filled(source, Pages::PiecesOf(Program)).toUtf8()) ? file
                                                                                     : QString();
}

void PageCharactersTest::APageShowsThemAsTheyAre()
{
    if (!ToolRun::IsInstalled("groff"))
        QSKIP("groff is not installed");
    QString const file = Folder.filePath("odd-host.1");
    QVERIFY(WriteFile(file, Page().toUtf8()));
    ToolRun const run("groff", {"-man", "-ww", "-Tascii", "-P-cbou", "-rLL=500n", "-rHY=0", file});
    QCOMPARE(run.Err, QString());
    // Of the name, three options, the command, its argument and its example.
    QCOMPARE(run.Out.split('\n').filter(c_Text).size(), 8);
    QVERIFY2(run.Out.contains("--choice W X"), qPrintable(run.Out));
}

void PageCharactersTest::NoLineOfTextBecomesARequest()
{
    static QRegularExpression const request("^\\.((TH|SH) .*|TP|PP|RS|RE|nf|fi)$|^[^.']|^$");
    for (QString const& line : Page().split('\n'))
        QVERIFY2(request.match(line).hasMatch(), qPrintable(line));
}

void PageCharactersTest::ALongTextIsBrokenIntoLines()
{
    constexpr int c_Longest = 80;

    // Wherever a line ends, the next one begins with a dot.
    Plain->description(QString(" .a").repeated(c_Longest).trimmed().toStdString());
    QString const page = Page();
    Plain->description(c_Text);
    QCOMPARE(page.count("\\&.a"), c_Longest);
    for (QString const& line : page.split('\n').filter("\\&.a"))
        QVERIFY2(line.size() <= c_Longest, qPrintable(line));
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
    CompletionShell completion(shell, File(shell));
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
    ToolRun const run(
        "fish", {"--no-config", "-c", "source $argv[1]; complete -C 'odd-host '", File("fish")});
    QCOMPARE(run.Out, "go\t" + QString(c_Text) + '\n');
    QCOMPARE(run.Err, QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PageCharactersTest)
#include "tst_PageCharacters.moc"
