#pragma once

#include <GameModules/StandartApplication.hpp>

/// The module of "Lantern Coast", a game that exists in this example only. What every game needs is
/// in the base class; here stands what is different: pictures, the name of the game's program, its
/// configuration file and its login.
class Lantern : public Varnholt::Launcher::StandartApplication {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID Varnholt_Application_iid FILE "Lantern.json")
    Q_INTERFACES(Varnholt::Launcher::Application)

public:
    Lantern();

    QString GetRessource(Varnholt::Launcher::ApplicationRessource::Type p_Type) override;
    bool IsGameRunning() override;
    /// Puts what logs the player in where the game looks for it, then starts the game.
    bool Start(QString p_Login, QString p_Password) override;
    /// Stores the code and writes it into "settings/lantern.conf" of an installed game.
    void SetAppLocale(QString p_Code) override;
    void AfterOnManifestReceived() override;
};
