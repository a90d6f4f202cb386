#pragma once

#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// How a program of the system, or one of ours, ended and what it said.
struct ToolRun {
    /// Runs it in a home of its own, which is its folder too; fails the whole program when it does
    /// not end.
    ToolRun(QString const& p_Program, QStringList const& p_Arguments);

    /// Whether it is there at all.
    static bool IsInstalled(QString const& p_Program);

    int Status = -1; ///< -1: it could not be started, or crashed
    QString Out;
    QString Err;
    QStringList Made; ///< files that it has left in its folder
};

} // namespace Varnholt::TestSupport
