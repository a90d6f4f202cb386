#include "Tests/Publisher/ProgramRun.hpp"

#include <csignal>

namespace Varnholt::TestSupport {

namespace {

/// Less than a server waits for a client that has stopped reading.
constexpr int c_WaitMilliseconds = 30000;

} // namespace

ProgramRun::ProgramRun(QStringList const& p_Arguments,
                       std::initializer_list<std::pair<char const*, char const*>> p_Variables)
    : Process(std::make_unique<QProcess>())
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto const& [name, value] : p_Variables)
        environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
    Process->setProcessEnvironment(environment);
    Process->start(QStringLiteral(VARNHOLT_PUBLISH_FILE), p_Arguments);
    if (!Process->waitForStarted(c_WaitMilliseconds))
        qFatal("%s cannot be started", VARNHOLT_PUBLISH_FILE);
}

ProgramRun::~ProgramRun()
{
    if (Runs()) {
        Process->kill();
        Process->waitForFinished(c_WaitMilliseconds);
    }
}

void ProgramRun::Signal(int p_Signal) const
{
    ::kill(static_cast<pid_t>(Process->processId()), p_Signal);
}

QByteArray ProgramRun::ReadLine()
{
    while (!Process->canReadLine() && Process->waitForReadyRead(c_WaitMilliseconds)) {
    }
    return Process->readLine().trimmed();
}

ProgramResult ProgramRun::Finish()
{
    ProgramResult result;
    Process->closeWriteChannel();
    if (Process->state() != QProcess::NotRunning && !Process->waitForFinished(c_WaitMilliseconds))
        return result;
    if (Process->exitStatus() == QProcess::NormalExit)
        result.Status = Process->exitCode();
    result.Output = Process->readAllStandardOutput();
    result.Errors = Process->readAllStandardError();
    return result;
}

ProgramResult RunProgram(QStringList const& p_Arguments,
                         std::initializer_list<std::pair<char const*, char const*>> p_Variables)
{
    return ProgramRun(p_Arguments, p_Variables).Finish();
}

} // namespace Varnholt::TestSupport
