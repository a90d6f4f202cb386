#pragma once

#include "GameModules/StandartApplication.hpp"

namespace Varnholt::Launcher {

/// The module of the 64-bit macOS client of "Mists of Pandaria": its names, its presentation, its
/// configuration file.
class Pelmora : public StandartApplication {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID Varnholt_Application_iid FILE "Pelmora.json")
    Q_INTERFACES(Varnholt::Launcher::Application)

public:
    Pelmora();

    void Init() override;
    void Uninit() override;
    QString GetRessource(ApplicationRessource::Type p_Type) override;
    /// Prepares automatic login when both texts are given and the game does not run yet, then
    /// starts the game. The credentials are written into the game's login screen file and nowhere
    /// else; that file stays until the next start.
    bool Start(QString p_Login, QString p_Password) override;
    /// Stores the code and writes it into the game's configuration file.
    void SetAppLocale(QString p_Code) override;
    /// Writes language and realm list into the configuration file of an installed game.
    void AfterOnManifestReceived() override;

private:
    void FetchRealmList();
    QString ConfigFile(); ///< null when there is none that is the game's own

    HTTP_GetRemotefileContentRequest* RealmListRequest = nullptr; ///< in flight, not owned
};

} // namespace Varnholt::Launcher
