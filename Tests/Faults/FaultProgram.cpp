#include "Tests/Faults/FaultProgram.hpp"

#include "Tests/Faults/FaultSuite.hpp"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cstdio>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_SkippedStatus = 77; // as many test runners know it

bool IsWanted(FaultRow const& p_Row, QStringList const& p_Parts)
{
    return p_Parts.isEmpty() ||
           std::any_of(p_Parts.begin(), p_Parts.end(), [&](auto const& p_Part) {
               return p_Row.Name.contains(p_Part, Qt::CaseInsensitive);
           });
}

int RunRow(std::vector<FaultRow> const& p_Rows, QString const& p_Name)
{
    for (FaultRow const& row : p_Rows)
        if (row.Name == p_Name) {
            std::fputs(FaultSuite::LineOf(row.Run()).constData(), stdout);
            return 0;
        }
    std::fprintf(stderr, "varnholt-faults: there is no row \"%s\"\n", qPrintable(p_Name));
    return 2;
}

int RunSuite(std::vector<FaultRow> const& p_Rows, int p_Jobs)
{
    FaultTable const table = FaultSuite(p_Rows, p_Jobs).Run();
    std::printf("%s", qPrintable(table.Text()));
    for (QString const& line : table.Faults() + table.NeverStruck())
        std::printf("%s\n", qPrintable(line));
    if (!table.Faults().isEmpty())
        return 1;
    return table.NeverStruck().isEmpty() ? 0 : c_SkippedStatus;
}

} // namespace

int RunFaultProgram(int p_Count, char** p_Arguments, std::vector<FaultRow> const& p_Rows)
{
    QCoreApplication const application(p_Count, p_Arguments);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Injects faults into installs and updates of a small game and prints what "
                       "became of them.\nEnds with 1 when a file was lost or wrong, with 77 when a "
                       "fault never struck."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("PART"),
                                 QStringLiteral("runs the rows whose names contain one of these"),
                                 QStringLiteral("[PART...]"));
    QCommandLineOption const jobs(
        QStringLiteral("jobs"), QStringLiteral("rows at the same time (default: processors + 1)"),
        QStringLiteral("N"), QString::number(QThread::idealThreadCount() + 1));
    QCommandLineOption const list(QStringLiteral("list"), QStringLiteral("prints the rows' names"));
    QCommandLineOption const row(QStringLiteral("row"),
                                 QStringLiteral("runs one row here and prints its report as JSON"),
                                 QStringLiteral("NAME"));
    parser.addOptions({jobs, list, row});
    parser.process(application);

    std::vector<FaultRow> rows = p_Rows;
    if (parser.isSet(row))
        return RunRow(rows, parser.value(row));
    QStringList const parts = parser.positionalArguments();
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&](auto const& p_Row) { return !IsWanted(p_Row, parts); }),
               rows.end());
    if (parser.isSet(list)) {
        for (FaultRow const& named : rows)
            std::printf("%s\n", qPrintable(named.Name));
        return 0;
    }
    if (rows.empty() || parser.value(jobs).toInt() < 1) {
        std::fprintf(stderr, "varnholt-faults: there is nothing to run; see --list and --help\n");
        return 2;
    }
    return RunSuite(rows, parser.value(jobs).toInt());
}

} // namespace Varnholt::TestSupport
