#pragma once

#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Core/Settings/SettingsFile.hpp"

#include <QByteArray>
#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// What a user of the window may choose. A value.
struct WindowSettings {
    QString Language;             ///< code of a launcher language; empty: the system's
    bool StartsMinimised = false; ///< into the tray when the window stays there, see below
    bool StaysInTray = false;     ///< when it is closed, and so does a download
    bool Notifies = true;         ///< of the end of what takes long
    QString ContentUrl;           ///< empty: the module's own server
    bool UsesDevChannel = false;
    quint64 BytesPerSecond = 0; ///< 0: no limit
    int Connections = HostOptions().Connections;
    QString
        TrustKey; ///< of a publisher, in the text form of keys; empty: no signature is asked for
    QByteArray Geometry; ///< of the window, see `QWidget::saveGeometry`

    /// What is unusable counts as not given.
    static WindowSettings Of(SettingsFile::Values const& p_Values);
    /// What has to be written for others to become these.
    SettingsFile::Values ChangesFrom(WindowSettings const& p_Before) const;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::WindowSettings)
