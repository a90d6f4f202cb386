#include "Host/Core/Failures/ExitStatus.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

using namespace Host;

QString const c_Subject = QStringLiteral("SUBJECT");
QString const c_Cause = QStringLiteral("CAUSE");

QString Row(QStringList const& p_Cells)
{
    return QStringLiteral("| %1 |\n").arg(p_Cells.join(QStringLiteral(" | ")));
}

QString Head(QStringList const& p_Cells)
{
    return Row(p_Cells) + QLatin1Char('|') + QStringLiteral("---|").repeated(p_Cells.size()) +
           QLatin1Char('\n');
}

QString Code(QString const& p_Word)
{
    return QStringLiteral("`%1`").arg(p_Word);
}

QString Statuses()
{
    QString table = Head({"Status", "Means"});
    for (ExitStatus const& row : c_ExitStatuses)
        table += Row({QString::number(row.Status), QString::fromUtf8(row.Meaning)});
    return table;
}

QString Failures()
{
    QString table = Head({"Failure", "Status", "Sentence", "What to do"});
    for (FailureKind const kind : Failure::Kinds()) {
        Failure const failure{kind, c_Subject, c_Cause};
        table += Row({Code(failure.Identifier()), QString::number(failure.ExitStatus()),
                      failure.Sentence(), failure.Remedy()});
    }
    return table;
}

QString Notices()
{
    QString table = Head({"Notice", "Severity", "Text"});
    QString const first = Notice{NoticeKind(), {}, {}}.Identifier();
    for (int i = 0;; ++i) {
        Notice const notice{static_cast<NoticeKind>(i), c_Subject, c_Cause};
        if (i > 0 && notice.Identifier() == first) // also of a value behind the last one
            return table;
        table += Row({Code(notice.Identifier()), notice.SeverityName(), notice.Text()});
    }
}

QString Document()
{
    return QStringLiteral(
               "<!-- Made by TroubleshootingTest, see CONTRIBUTING.md. -->\n"
               "# When something goes wrong\n"
               "\n"
               "A program that fails says in one sentence what has failed and what to do about it, "
               "and ends\nwith a status. With `--json` the failure's identifier is beside it "
               "([host-json.md](host-json.md)).\nBelow, SUBJECT is a file, a folder, an address "
               "or an amount, and CAUSE is what the system or the\nserver says. The file that "
               "`--log-file FILE` writes is what to send along with a question: it tells\nof "
               "every try that has failed, and leaves out passwords.\n"
               "\n"
               "## Exit statuses of `varnholt-host`\n"
               "\n%1\n"
               "## Failures\n"
               "\n%2\n"
               "## Notices\n"
               "\n"
               "Things that a run goes on after.\n"
               "\n%3")
        .arg(Statuses(), Failures(), Notices());
}

} // namespace

/// That docs/troubleshooting.md says what the program says.
class TroubleshootingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheDocumentIsMadeFromTheTables();
};

void TroubleshootingTest::TheDocumentIsMadeFromTheTables()
{
    QString const folder = qEnvironmentVariable("VARNHOLT_WRITE_DOCUMENTS", VARNHOLT_DOCUMENTS);
    QString const file = folder + QStringLiteral("/troubleshooting.md");
    if (folder != VARNHOLT_DOCUMENTS)
        QVERIFY(WriteFile(file, Document().toUtf8()));
    QVERIFY2(ReadFile(file) == Document().toUtf8(),
             "docs/troubleshooting.md is out of date: CONTRIBUTING.md tells how to make it anew");
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TroubleshootingTest)
#include "tst_Troubleshooting.moc"
