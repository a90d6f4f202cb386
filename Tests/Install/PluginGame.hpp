#pragma once

#include "Tests/Support/GameWithServer.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestHost.hpp"

#include <memory>

namespace Varnholt::TestSupport {

/// The built plug-in in a host, with a content server and a folder to install into.
class PluginGame : public GameWithServer {
public:
    PluginGame();
    ~PluginGame();
    PluginGame(PluginGame const&) = delete;
    PluginGame& operator=(PluginGame const&) = delete;

    Launcher::Application& App() { return *Plugin->App(); }
    TestHost& Host() { return *CurrentHost; }
    /// The progress record's nested record.
    auto& Progress() { return App().UISetting.Download; }

    /// Runs until the module has nothing left to do.
    [[nodiscard]] bool Finish() { return CurrentHost->RunUntilIdle(); }
    /// Runs the start-up chain to its end, and the run that it begins.
    [[nodiscard]] bool Init();
    /// Installs into the folder and runs to the end.
    [[nodiscard]] bool Install(bool p_Flag = false);
    [[nodiscard]] bool Repair();
    /// Ends the launcher and starts it again: a new module, the same settings.
    void Restart();

    LogCapture Log;

private:
    void Load();

    std::unique_ptr<LoadedPlugin> Plugin;
    std::unique_ptr<TestHost> CurrentHost;
};

} // namespace Varnholt::TestSupport
