#include "Tests/Install/PluginGame.hpp"

namespace Varnholt::TestSupport {

PluginGame::PluginGame()
    : GameWithServer(QString::fromUtf8("Jeux été/Game/"))
{
    Server.BecomeDefaultContentServer();
    Load();
}

PluginGame::~PluginGame() = default;

void PluginGame::Load()
{
    Plugin = std::make_unique<LoadedPlugin>();
    if (Plugin->App() == nullptr)
        qFatal("%s", qPrintable(Plugin->GetLoader().errorString()));
    CurrentHost = std::make_unique<TestHost>(*Plugin->App());
}

bool PluginGame::Init()
{
    App().Init();
    return Finish();
}

bool PluginGame::Install(bool p_Flag)
{
    App().Install(Folder, p_Flag);
    return Finish();
}

bool PluginGame::Repair()
{
    App().Repair();
    return Finish();
}

void PluginGame::Restart()
{
    QMap<QString, QVariant> settings;
    for (QString const& key : CurrentHost->SettingKeys())
        settings[key] = CurrentHost->Setting(key);
    std::size_t const locale = CurrentHost->LocaleIndex;
    CurrentHost.reset();
    Plugin.reset();
    Load();
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        CurrentHost->SetSetting(setting.key(), setting.value());
    CurrentHost->LocaleIndex = locale;
}

} // namespace Varnholt::TestSupport
