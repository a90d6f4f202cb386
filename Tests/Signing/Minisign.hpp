#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

namespace Varnholt::TestSupport {

/// Runs the minisign program with so little memory that its keys' passwords cost no seconds.
/// \param p_Input what it reads when it asks for passwords
/// \return what it says, and nothing unless it succeeds
inline QByteArray Minisign(QStringList const& p_Arguments, QByteArray const& p_Input = {})
{
    QProcess process;
    process.start("sh",
                  QStringList{"-c", "ulimit -v 50000; exec minisign \"$@\"", "sh"} << p_Arguments);
    process.write(p_Input);
    process.closeWriteChannel();
    constexpr int c_Milliseconds = 60000;
    if (!process.waitForFinished(c_Milliseconds) || process.exitCode() != 0) {
        qWarning("%s", process.readAllStandardError().constData());
        return {};
    }
    return process.readAllStandardOutput();
}

} // namespace Varnholt::TestSupport
