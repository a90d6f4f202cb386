#pragma once

#include "Host/Core/Network/AddressNames.hpp"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace Varnholt::Host {

/// What a program may choose about a session. The initial values are those of a plain start.
struct HostOptions {
    QString ModuleFile;   ///< absolute; empty: `DefaultModuleFile()`
    QString SettingsFile; ///< absolute; empty: `DefaultSettingsFile()`
    QString ContentUrl;   ///< content server instead of the module's own; empty: none
    bool UseDevChannel = false;
    /// Of who must have signed the game's documents, as `Signing::PublicKey` reads it; empty: the
    /// one that the module names, if any.
    QString TrustKey;
    QString ContentUser; ///< of the content server, never told to a mirror; empty: none
    QString ContentPassword;
    QString NetrcFile; ///< absolute; empty: the user's own
    QString CaFile;    ///< PEM, absolute; empty: the system's
    QString Proxy;     ///< empty: what the environment names
    bool HttpsMirrors = false;
    int Connections = 4;        ///< that bring content at the same time
    quint64 BytesPerSecond = 0; ///< 0: as fast as it comes
    bool Offline = false;       ///< nobody is asked
    int ConnectMilliseconds = 15'000;
    int StallMilliseconds = 30'000;     ///< what has not moved for so long is begun again
    int RetryPauseMilliseconds = 500;   ///< before a server is asked again; doubles each time
    int RetryForMilliseconds = 600'000; ///< without a byte; 0: for ever
    int CopyDelayMilliseconds = 2'000;  ///< how long `play` and `verify` wait for a server
    QStringList Wrapper;                ///< words that the game's are put behind; empty: none
    int WatchMilliseconds = 1'000;      ///< how long a game must run to be taken for started
    /// What people know addresses by that only this process knows. The session fills it.
    std::shared_ptr<AddressNames> Names = std::make_shared<AddressNames>();
    /// Bytes that may still be written to the volume of a path. Module thread.
    std::function<qint64(QString const&)> FreeBytes = VolumeFreeBytes;
    /// Returns when what was written to the volume of a path is on its medium. Module thread.
    std::function<void(QString const&)> Flush = FlushVolume;

    /// Base address of the content server in use, ends in "/": `ContentUrl`, or the module's own.
    /// Asked before there is a session, which leads the module elsewhere.
    QString ContentServer() const;

    /// The module that was built or installed with the program.
    static QString DefaultModuleFile();
    /// Where it is installed, relative to the folder of the program.
    static QString InstalledModuleFile();
    /// `c_SettingsName` in the user's folder of settings.
    static QString DefaultSettingsFile();
    static constexpr char c_SettingsName[] = "varnholt/host.ini";
    /// Whether a text can be a `ContentUrl`: http or https, a host, no query, no password.
    static bool IsContentUrl(QString const& p_Text);
    /// -1 when the volume is not known.
    static qint64 VolumeFreeBytes(QString const& p_Path);
    static void FlushVolume(QString const& p_Path);
};

} // namespace Varnholt::Host
