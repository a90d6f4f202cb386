#pragma once

#include "GameModules/StandartApplication.hpp"

#include <atomic>
#include <functional>

namespace Varnholt::TestSupport {

/// A game module with nothing of a game in it: the shared part of every module, within reach.
class TestApplication : public Launcher::StandartApplication {
public:
    explicit TestApplication(QString const& p_Name = QStringLiteral("Test Game"),
                             QString const& p_AppId = QStringLiteral("test_app"))
        : StandartApplication(p_Name, p_AppId)
    {
    }

    /// The game's answer to `IsGameRunning()`.
    std::atomic<bool> GameRuns{false};
    /// Ask the system's process list instead.
    std::atomic<bool> AsksProcessList{false};
    std::atomic<int> GameQuestions{0};
    int ManifestHooks = 0;
    int InstallHooks = 0;
    std::function<void()> OnManifestHook;
    std::function<void()> OnInstallHook;

    QString GetRessource(Launcher::ApplicationRessource::Type) override { return {}; }
    void SetAppLocale(QString p_Code) override
    {
        WriteSetting(SettingKey(".InstallLocale"), p_Code);
    }
    bool IsGameRunning() override
    {
        ++GameQuestions;
        return AsksProcessList ? StandartApplication::IsGameRunning() : GameRuns.load();
    }
    void OnInstall() override
    {
        ++InstallHooks;
        if (OnInstallHook)
            OnInstallHook();
    }
    void AfterOnManifestReceived() override
    {
        ++ManifestHooks;
        if (OnManifestHook)
            OnManifestHook();
    }

    using StandartApplication::BeginRun;
    using StandartApplication::ChooseServer;
    using StandartApplication::CurrentRun;
    using StandartApplication::Folder;
    using StandartApplication::RequestSize;
    using StandartApplication::SettingKey;
    using StandartApplication::Transfers;
};

} // namespace Varnholt::TestSupport
