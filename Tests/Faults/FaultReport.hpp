#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace Varnholt::TestSupport {

/// What became of a game under one fault.
struct FaultReport {
    static constexpr qint64 c_NotMeasured = -1;

    int Injected = 0;   ///< how often the fault really struck
    QString Outcome;    ///< in words, for the table
    QStringList Faults; ///< sentences: each file that was lost or wrong, each promise not kept
    qint64 Silence = c_NotMeasured; ///< longest time the module's thread did not answer, ms

    QJsonObject ToJson() const;
    static FaultReport FromJson(QJsonObject const& p_Object);
    /// One whose fault cannot be injected on this machine.
    static FaultReport NotPossible(QString const& p_Why);
};

/// One fault, tried in every place where it makes sense. Runs in a process of its own.
struct FaultRow {
    QString Name; ///< also on the command line, and in the table
    std::function<FaultReport()> Run;
};

} // namespace Varnholt::TestSupport
