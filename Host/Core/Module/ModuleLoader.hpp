#pragma once

#include "GameModules/StandartApplication.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"

#include <QCoreApplication>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace Varnholt::Host {

/// Loads a module and holds its object.
///
/// The host has its own copy of the module's base classes: docs/host-guide.md tells what it may
/// touch of the object.
class ModuleLoader {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::ModuleLoader)

public:
    /// Creates the module's object, on the calling thread, which becomes its application thread.
    /// The interface identifier and the layout are read from the file before any of its code runs.
    std::optional<Failure> Load(QString const& p_File);
    /// Deletes the object; on the thread that loaded it. The library stays in memory, since Qt may
    /// still hold types that it has registered.
    void Release();

    Launcher::StandartApplication* Application() const { return Object; }
    ModuleInfo Info() const;

private:
    QString File;
    QJsonObject MetaData;
    Launcher::StandartApplication* Object = nullptr;
};

} // namespace Varnholt::Host
