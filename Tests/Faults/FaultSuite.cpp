#include "Tests/Faults/FaultSuite.hpp"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTimer>

#include <cstdio>

namespace Varnholt::TestSupport {

FaultSuite::FaultSuite(std::vector<FaultRow> const& p_Rows, int p_Jobs)
    : Rows(p_Rows)
    , Jobs(p_Jobs)
{
}

FaultTable FaultSuite::Run()
{
    Clock.start();
    for (int job = 0; job < Jobs; ++job)
        StartNext();
    QEventLoop loop;
    while (Running > 0)
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    FaultTable table;
    for (auto const& row : Reports)
        table.Add(Rows[row.first].Name, row.second);
    return table;
}

void FaultSuite::StartNext()
{
    constexpr int c_MostMilliseconds = 14 * 60'000;

    if (Next >= Rows.size())
        return;
    std::size_t const row = Next++;
    ++Running;
    auto* const process = new QProcess(this);
    connect(process, &QProcess::errorOccurred, this, [this, row, process](auto p_Error) {
        if (p_Error == QProcess::FailedToStart)
            OnEnded(row, *process);
    });
    connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this, row, process] { OnEnded(row, *process); });
    QTimer::singleShot(c_MostMilliseconds, process, &QProcess::kill);
    process->start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("--row"), Rows[row].Name});
}

void FaultSuite::OnEnded(std::size_t p_Row, QProcess& p_Process)
{
    FaultReport const report = ReportOf(p_Process);
    Reports[p_Row] = report;
    std::fprintf(stderr, "[%3lld s] %s: %d injected, %s\n",
                 static_cast<long long>(Clock.elapsed() / 1'000), qPrintable(Rows[p_Row].Name),
                 report.Injected,
                 report.Faults.isEmpty() ? "nothing lost" : qPrintable(report.Faults.join("; ")));
    --Running;
    p_Process.deleteLater();
    StartNext();
}

QByteArray FaultSuite::LineOf(FaultReport const& p_Report)
{
    return QJsonDocument(p_Report.ToJson()).toJson(QJsonDocument::Compact) + '\n';
}

FaultReport FaultSuite::ReportOf(QProcess& p_Process)
{
    QList<QByteArray> const lines = p_Process.readAllStandardOutput().trimmed().split('\n');
    QJsonDocument const last = QJsonDocument::fromJson(lines.last());
    bool const isWhole = p_Process.exitStatus() == QProcess::NormalExit &&
                         p_Process.exitCode() == 0 && last.isObject();
    if (isWhole)
        return FaultReport::FromJson(last.object());
    FaultReport report;
    QByteArray const said = p_Process.readAllStandardError().trimmed();
    report.Outcome = QStringLiteral("no report");
    report.Faults += QStringLiteral("its process gave no report (%1): %2")
                         .arg(p_Process.errorString(), QString::fromUtf8(said.right(500)));
    return report;
}

} // namespace Varnholt::TestSupport
