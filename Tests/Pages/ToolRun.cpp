#include "Tests/Pages/ToolRun.hpp"

#include "Tests/Support/TestHost.hpp"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace Varnholt::TestSupport {

ToolRun::ToolRun(QString const& p_Program, QStringList const& p_Arguments)
{
    QTemporaryDir const home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("TERM"), QStringLiteral("dumb"));
    for (QString const& name : environment.keys())
        if (name.startsWith(QLatin1String("VARNHOLT_")) || name.startsWith(QLatin1String("XDG_")) ||
            name.startsWith(QLatin1String("MAN")) || name.startsWith(QLatin1String("GROFF")))
            environment.remove(name);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(home.path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(p_Program, p_Arguments);
    if (!process.waitForFinished(TestHost::c_Timeout) && process.error() == QProcess::Timedout)
        qFatal("%s does not end", qPrintable(p_Program));
    if (process.error() == QProcess::UnknownError && process.exitStatus() == QProcess::NormalExit)
        Status = process.exitCode();
    Out = QString::fromUtf8(process.readAllStandardOutput());
    Err = QString::fromUtf8(process.readAllStandardError());
    Made = QDir(home.path()).entryList(QDir::Files);
}

bool ToolRun::IsInstalled(QString const& p_Program)
{
    return !QStandardPaths::findExecutable(p_Program).isEmpty();
}

} // namespace Varnholt::TestSupport
