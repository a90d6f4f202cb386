#include "GameModules/StandartApplication.hpp"

namespace Varnholt::TestSupport {

/// A module whose metadata name a key.
class KeyedModule : public Launcher::StandartApplication {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID Varnholt_Application_iid FILE "KeyedModule.json")
    Q_INTERFACES(Varnholt::Launcher::Application)

public:
    KeyedModule()
        : StandartApplication(QStringLiteral("Keyed"), QStringLiteral("keyed_app"))
    {
    }

    QString GetRessource(Launcher::ApplicationRessource::Type) override { return {}; }
    void SetAppLocale(QString) override {}
};

} // namespace Varnholt::TestSupport

#include "KeyedModule.moc"
