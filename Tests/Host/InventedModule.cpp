#include "GameModules/StandartApplication.hpp"

#include <QFile>

namespace Varnholt::TestSupport {

/// A module of another game, for a host that is to know none.
class InventedModule : public Launcher::StandartApplication {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID Varnholt_Application_iid FILE "InventedModule.json")
    Q_INTERFACES(Varnholt::Launcher::Application)

public:
    InventedModule()
        : StandartApplication(QStringLiteral("Lantern Coast"), QStringLiteral("lantern_app"))
    {
    }

    QString GetRessource(Launcher::ApplicationRessource::Type) override { return {}; }
    void SetAppLocale(QString p_Code) override { WriteSetting(SettingKey(".Locale"), p_Code); }
    bool Start(QString p_Login, QString p_Password) override
    {
        QString const screen = Folder() + QStringLiteral("login/screen.txt");
        QFile::remove(screen);
        if (!p_Login.isEmpty() && !p_Password.isEmpty())
            QFile::copy(screen + QStringLiteral(".model"), screen);
        return StandartApplication::Start(p_Login, p_Password);
    }
};

} // namespace Varnholt::TestSupport

#include "InventedModule.moc"
