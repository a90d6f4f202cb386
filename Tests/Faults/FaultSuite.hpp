#pragma once

#include "Tests/Faults/FaultReport.hpp"
#include "Tests/Faults/FaultTable.hpp"

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>

#include <map>
#include <vector>

namespace Varnholt::TestSupport {

/// Runs rows, each by this program in a process of its own, several at a time: one that crashes or
/// hangs is a fault of its row and of no other.
class FaultSuite : public QObject {
public:
    /// \param p_Rows in the order of the table
    FaultSuite(std::vector<FaultRow> const& p_Rows, int p_Jobs);

    /// Runs all; tells on standard error what is done. \return the table
    FaultTable Run();

    /// What the process of a row writes as its last line.
    static QByteArray LineOf(FaultReport const& p_Report);

private:
    void StartNext();
    void OnEnded(std::size_t p_Row, QProcess& p_Process);
    static FaultReport ReportOf(QProcess& p_Process);

    std::vector<FaultRow> const& Rows;
    int const Jobs;
    std::size_t Next = 0;
    int Running = 0;
    std::map<std::size_t, FaultReport> Reports;
    QElapsedTimer Clock;
};

} // namespace Varnholt::TestSupport
