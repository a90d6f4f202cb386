#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>

namespace Varnholt::TestSupport {

/// What the program has done.
struct ProgramResult {
    int Status = -1; ///< exit status; -1 when it has not ended by itself
    QByteArray Output;
    QByteArray Errors;
};

/// The built program at work.
class ProgramRun {
public:
    /// Starts it. \param p_Variables set in its environment, name by name
    explicit ProgramRun(
        QStringList const& p_Arguments,
        std::initializer_list<std::pair<char const*, char const*>> p_Variables = {});
    /// Ends it the hard way when it still runs.
    ~ProgramRun();
    ProgramRun(ProgramRun const&) = delete;
    ProgramRun& operator=(ProgramRun const&) = delete;

    qint64 Id() const { return Process->processId(); }
    void Signal(int p_Signal) const;
    /// What it reads on standard input.
    void Write(QByteArray const& p_Bytes) const { Process->write(p_Bytes); }
    bool Runs() const { return Process->state() == QProcess::Running; }
    /// Waits until it has written a whole line and answers it without the line end.
    QByteArray ReadLine();
    /// Waits for its end.
    ProgramResult Finish();

private:
    std::unique_ptr<QProcess> Process;
};

/// Runs the program to its end.
ProgramResult
RunProgram(QStringList const& p_Arguments,
           std::initializer_list<std::pair<char const*, char const*>> p_Variables = {});

} // namespace Varnholt::TestSupport
