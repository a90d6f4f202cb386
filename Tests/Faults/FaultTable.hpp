#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// What became of every fault, as people read it.
class FaultTable {
public:
    /// \param p_Name of the fault
    void Add(QString const& p_Name, FaultReport const& p_Report);

    /// Columns of equal width; with bars between them, Markdown takes it for a table too.
    QString Text() const;
    /// Every fault of every row, a line each; empty when nothing was lost.
    QStringList Faults() const;
    /// A line for each row that proves nothing, since its fault could not be injected.
    QStringList NeverStruck() const;

private:
    static QStringList Cells(QString const& p_Name, FaultReport const& p_Report);

    std::vector<std::pair<QString, FaultReport>> Rows;
};

} // namespace Varnholt::TestSupport
