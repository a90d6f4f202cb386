#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Jobs/GameOutput.hpp"
#include "Host/Core/Jobs/GameProcess.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Module/RunContext.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>

#include <functional>
#include <memory>
#include <optional>

namespace Varnholt::Host {

/// The start of a game whose build is known, from the look at its program to the moment in which it
/// is taken for running. The module prepares login screen and permissions, the host starts the
/// program: its end would not be seen otherwise. Module thread.
class GameStart {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::GameStart)

public:
    /// \param p_Tell told what the start goes on after
    GameStart(RunContext const& p_Context, RunRequest const& p_Request,
              std::function<void(Notice const&)> p_Tell);

    /// Starts the game. \return why it does not run; the account's files are gone then
    std::optional<Failure> Begin();
    /// True once the game has run for a moment, or has ended.
    bool IsSettled();
    /// Called when it is settled. \return the error that the game has ended with
    std::optional<Failure> Outcome();

    qint64 ProcessId() const { return Process->Id(); }
    /// Gives up a game that runs, or has run well.
    std::unique_ptr<GameProcess> TakeProcess() { return std::move(Process); }
    /// Empty when the output is not kept.
    QString const& OutputFile() const { return OutputName; }

private:
    std::optional<Failure> FindProgram();
    std::optional<Failure> FindWrapper();
    void Prepare(QString const& p_Account, QString const& p_Password);
    std::optional<Failure> Launch();
    void JudgeLogin(bool p_WasRunning) const;

    RunContext Context;
    RunRequest Request;
    std::function<void(Notice const&)> Tell;
    QString Folder;
    QFileInfo Program;
    QString Wrapper; ///< its file; empty: none
    GameOutput Output;
    QString OutputName;
    std::unique_ptr<GameProcess> Process = std::make_unique<GameProcess>();
    QDeadlineTimer Watched;
};

} // namespace Varnholt::Host
