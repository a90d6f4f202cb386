#pragma once

#include "GameModules/Pelmora/Pelmora.hpp"
#include "Tests/Endurance/ProcessUsage.hpp"
#include "Tests/Endurance/TransferWatch.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

namespace Varnholt::TestSupport {

/// The game module with its inside within reach.
class OpenPelmora : public Launcher::Pelmora {
public:
    using Pelmora::CurrentRun;
    using Pelmora::Folder;
    using Pelmora::IsFilePending;
    using Pelmora::Transfers;
};

/// A small game of every kind of file on two servers, its module and a host. Its executable does
/// nothing, and what stands in for the process list shows the game as running when told.
class EnduringGame {
public:
    explicit EnduringGame(TestHost::Worker p_Worker);
    ~EnduringGame();
    EnduringGame(EnduringGame const&) = delete;
    EnduringGame& operator=(EnduringGame const&) = delete;

    /// Runs the start-up chain.
    [[nodiscard]] bool Begin();
    /// Runs whatever the host runs until the condition holds. \return false when it never does
    [[nodiscard]] bool RunUntil(std::function<bool()> const& p_Condition);
    /// Runs until the module has nothing left to do.
    [[nodiscard]] bool Finish();
    /// Runs the next sync closure, or the events when there is none.
    void RunEvents();
    /// Whether anything is queued, asked for or in flight.
    bool IsBusy() const;
    bool IsByHand() const { return Worker == TestHost::Worker::ByHand; }

    void ShowGameRunning(bool p_Runs) const;
    QString PathOf(QString const& p_File) const { return Folder + p_File; }
    /// What is missing or wrong in the folder, and what the module has not put away.
    QStringList Faults() const;
    /// What must never be, whatever goes on, and was since the last call.
    QStringList Violations();
    /// What the process holds when no connection is kept open for later; waits until that is not
    /// more than expected.
    ProcessUsage SettledUsage(ProcessUsage const& p_Expected = ProcessUsage::Any());
    /// Where the module stands, for a failure's description. Any thread.
    QString Describe() const;

    QTemporaryDir Temporary;
    QString Folder;    ///< ends in "/"
    QString Elsewhere; ///< another folder to install into
    LogCapture Log;
    ScriptedServer Server;
    ScriptedServer Mirror;
    SampleContent Content;
    OpenPelmora App;
    TransferWatch Transfers;
    TestHost Host;

private:
    QString Asked(QString const& p_Url) const;
    void AddFiles();
    void InstallProcessList() const;

    TestHost::Worker const Worker;
    ScopedVariable const SearchPath;
    QTemporaryDir CurrentFolder;
    ScopedCurrentFolder const InCurrentFolder;
};

} // namespace Varnholt::TestSupport
