#pragma once

#include "GameModules/StandartApplication.hpp"

#include <QPluginLoader>
#include <QString>

namespace Varnholt::TestSupport {

/// The built plug-in, loaded as a launcher loads it. Deletes the module; the library stays, as Qt
/// keeps every plug-in.
///
/// The module's class has its code in the library: call its virtual functions and use its public
/// members; anything else runs the test program's own copy of the code on it, which does the same.
class LoadedPlugin {
public:
    LoadedPlugin()
        : Loader(Path())
    {
    }
    ~LoadedPlugin()
    {
        delete Loader.instance();
        Loader.unload();
    }
    LoadedPlugin(LoadedPlugin const&) = delete;
    LoadedPlugin& operator=(LoadedPlugin const&) = delete;

    /// The library that was built.
    static QString Path() { return QString::fromUtf8(VARNHOLT_PLUGIN_FILE); }

    QPluginLoader& GetLoader() { return Loader; }
    /// Null when it cannot be loaded.
    Launcher::Application* App() { return qobject_cast<Launcher::Application*>(Loader.instance()); }
    Launcher::StandartApplication* Standart()
    {
        return static_cast<Launcher::StandartApplication*>(App());
    }

private:
    QPluginLoader Loader;
};

} // namespace Varnholt::TestSupport
