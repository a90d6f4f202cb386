#pragma once

#include "GameModules/Pelmora/Pelmora.hpp"
#include "Tests/Launch/GameScript.hpp"
#include "Tests/Support/GameFolder.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestHost.hpp"

#include <functional>
#include <optional>

namespace Varnholt::TestSupport {

/// The game module, which tells what its start asks for.
class LaunchedPelmora : public Launcher::Pelmora {
public:
    /// The answer to `IsGameRunning()`; none: asks the system's process list.
    std::optional<bool> GameRuns = false;
    std::function<void()> OnGameQuestion;
    std::function<void()> OnSuspend;

    bool IsGameRunning() override
    {
        if (OnGameQuestion)
            OnGameQuestion();
        return GameRuns ? *GameRuns : Pelmora::IsGameRunning();
    }
    void SuspendDownload() override
    {
        if (OnSuspend)
            OnSuspend();
        Pelmora::SuspendDownload();
    }
};

/// The installed game in a folder of its own, with its executable in the build. No content server,
/// no run.
class LaunchBench : public GameFolder {
public:
    static char const* const c_Layout;
    static char const* const c_Script;
    static char const* const c_LayoutTemplate;
    static char const* const c_ScriptTemplate;
    /// Where a real game has it.
    static char const* const c_Executable;

    LaunchBench();
    /// Waits for what was started to be written down: it must not meet the folder's removal.
    ~LaunchBench();
    LaunchBench(LaunchBench const&) = delete;
    LaunchBench& operator=(LaunchBench const&) = delete;

    /// Adds a row to the build's base files.
    void AddEntry(QString const& p_Path, qint32 p_Flags);
    /// Both templates; the layout holds nothing but the two placeholders between words.
    void PutTemplates();
    /// Live files of an earlier start.
    void PutLiveFiles();
    [[nodiscard]] bool RunUntilStarted(int p_Times = 1);

    /// How often the log says that the executable was started.
    int LoggedStarts() const { return Log.Count("Start  \"" + Game.Path + "\""); }
    bool HasLiveFiles() const { return Has(c_Layout) || Has(c_Script); }

    LogCapture Log;
    GameScript Game;
    LaunchedPelmora App;
    TestHost Host;
};

} // namespace Varnholt::TestSupport
