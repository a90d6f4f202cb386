#pragma once

#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Gateway/Gateway.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace Varnholt::Host {

/// The gateway as the host and the module's object see it: while it lives it is the content server
/// of this process's module. Made before the threads that read the environment; from then on it is
/// the module thread's.
///
/// Addresses below the gateway's are those of `Gateway::Gateway`: "<AppId>/<location>" of a file,
/// percent-encoded as Qt sends them.
class NetworkDoor {
public:
    using Problem = std::optional<Gateway::FetchProblem>;
    static constexpr char c_HostList[] = "cdns.info";

    /// Opens the door and names it in the environment, where the module looks for its content
    /// server. Qt uses no proxy for it: it is on this machine.
    /// \param p_Owner outlives it; on whose thread replies arrive
    NetworkDoor(HostOptions const& p_Options, QObject& p_Owner);
    /// Takes all of that back. To be called after the end of the module.
    ~NetworkDoor();
    NetworkDoor(NetworkDoor const&) = delete;
    NetworkDoor& operator=(NetworkDoor const&) = delete;

    /// Names the application whose files are asked for.
    void Serve(QString const& p_AppId) { AppId = p_AppId; }
    /// False when the system lets nobody listen.
    bool IsOpen() const { return !Base.isEmpty(); }
    Gateway::Gateway* operator->() { return Door.get(); }
    Gateway::Gateway const* operator->() const { return Door.get(); }

    /// The default content server itself, without user and password; ends in "/".
    QString const& ContentServer() const { return Server; }
    /// Where that has something of the game's.
    QString UrlOf(QString const& p_Location) const
    {
        return Server + AppId + QLatin1Char('/') + p_Location;
    }
    /// The path of something of the game's: "version.json", or a file's location.
    std::string PathOf(QString const& p_Location) const;
    /// The path that the module has asked the door for.
    std::string PathIn(QString const& p_Url) const;
    std::optional<quint64> SizeOf(QString const& p_Location) const;
    Problem ProblemOf(QString const& p_Location) const;

    /// A file that a run is going to ask for. \param p_Path where it belongs on the disk
    Gateway::PlannedFile Planned(Launcher::ApplicationManifestFileEntry const& p_Entry,
                                 QString const& p_Path) const;
    /// Asks one question. \param p_OnReply called on the owner's thread, while p_Context lives
    void Ask(Gateway::Question p_Question, QObject& p_Context,
             std::function<void(Gateway::Reply const&)> p_OnReply);

    /// While it lives the environment is as it was before the door: for programs that are started.
    class Outside {
    public:
        explicit Outside(NetworkDoor& p_Door);
        ~Outside();
        Outside(Outside const&) = delete;
        Outside& operator=(Outside const&) = delete;

    private:
        NetworkDoor& Door;
    };

private:
    void Announce() const;
    void Withdraw() const;

    QObject& Owner;
    QString AppId;
    std::optional<QByteArray> FormerUrl; ///< of the environment
    QString Server;
    std::unique_ptr<Gateway::Gateway> Door;
    QString Base; ///< the door's address; ends in "/"
};

} // namespace Varnholt::Host
