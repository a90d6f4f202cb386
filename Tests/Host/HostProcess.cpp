#include "Tests/Host/HostProcess.hpp"

#include "Tests/Support/TestHost.hpp"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcessEnvironment>

#include <csignal>

namespace Varnholt::TestSupport {

HostProcess::HostProcess(HostGame const& p_Game, QStringList const& p_Arguments)
{
    Start(p_Game, Options(p_Game) + p_Arguments);
}

HostProcess::HostProcess(HostGame const& p_Game, QStringList const& p_Options,
                         QStringList const& p_Arguments, QMap<QString, QString> const& p_Variables)
{
    Start(p_Game, p_Options + p_Arguments, p_Variables);
}

HostProcess::HostProcess(HostGame const& p_Game, QStringList const& p_Arguments,
                         QMap<QString, QString> const& p_Variables)
{
    Start(p_Game, Options(p_Game) + p_Arguments, p_Variables);
}

HostProcess::~HostProcess()
{
    if (Process.state() == QProcess::NotRunning)
        return;
    Process.kill();
    Process.waitForFinished();
}

QStringList HostProcess::Options(HostGame const& p_Game)
{
    return {QStringLiteral("--settings"), p_Game.SettingsFile, QStringLiteral("--content-url"),
            p_Game.Server.BaseUrl()};
}

QProcessEnvironment HostProcess::Environment(HostGame const& p_Game)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QDir().mkpath(p_Game.Base + QStringLiteral("home"));
    environment.insert("HOME", p_Game.Base + QStringLiteral("home"));
    environment.insert("LC_ALL", "C.UTF-8");
    for (char const* const name : {"XDG_CONFIG_HOME", "NO_COLOR", "TERM"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

void HostProcess::Start(HostGame const& p_Game, QStringList const& p_Arguments,
                        QMap<QString, QString> const& p_Variables)
{
    QProcessEnvironment environment = Environment(p_Game);
    for (auto row = p_Variables.constBegin(); row != p_Variables.constEnd(); ++row)
        environment.insert(row.key(), row.value());
    Process.setProcessEnvironment(environment);
    Process.setWorkingDirectory(p_Game.Base);
    Process.start(Program(), p_Arguments);
    if (!Process.waitForStarted())
        qFatal("%s cannot be started", qPrintable(Program()));
}

void HostProcess::Take()
{
    Out += Process.readAllStandardOutput();
    Err += Process.readAllStandardError();
}

Outcome HostProcess::Finish(QByteArray const& p_Input)
{
    Process.write(p_Input);
    Process.closeWriteChannel();
    if (Process.state() != QProcess::NotRunning && !Process.waitForFinished(TestHost::c_Timeout)) {
        Take();
        qFatal("varnholt-host does not end; it said: %s", Err.constData());
    }
    Take();
    Outcome outcome;
    if (Process.exitStatus() == QProcess::NormalExit)
        outcome.Status = Process.exitCode();
    outcome.Out = QString::fromUtf8(Out);
    outcome.Err = QString::fromUtf8(Err);
    return outcome;
}

bool HostProcess::WaitForErr(QString const& p_Text)
{
    return WaitUntil([&] { return Err.contains(p_Text.toUtf8()); });
}

bool HostProcess::WaitForOut(QString const& p_Text)
{
    return WaitUntil([&] { return Out.contains(p_Text.toUtf8()); });
}

bool HostProcess::WaitUntil(std::function<bool()> const& p_Condition)
{
    constexpr int c_LookMilliseconds = 10;

    QDeadlineTimer const deadline(TestHost::c_Timeout);
    while (!p_Condition()) {
        if (deadline.hasExpired() || Process.state() == QProcess::NotRunning)
            return false;
        Process.waitForReadyRead(c_LookMilliseconds);
        Take();
    }
    return true;
}

void HostProcess::Signal(int p_Signal) const
{
    // 0 would be the tests' own group of processes.
    if (Process.processId() <= 0)
        qFatal("varnholt-host has ended before its signal; it said: %s", Err.constData());
    ::kill(static_cast<pid_t>(Process.processId()), p_Signal);
}

} // namespace Varnholt::TestSupport
