#pragma once

#include "Host/Core/Folder/FileAmount.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>

namespace Varnholt::Host {

/// Removes what a build and the module have put into a game folder: the login screen and its
/// secrets first, the files, their beginnings and the folders that become empty, the pending lists
/// last. What is the player's own stays. `Look` or `Run` on one thread, the rest on any.
class GameRemoval {
public:
    /// \param p_Folder ends in "/" \param p_LoginFiles see `ModuleInfo`
    GameRemoval(Launcher::ApplicationManifest p_Manifest, QString p_Folder,
                QStringList p_LoginFiles);

    /// Finds out what would go, and what would stay; changes nothing.
    void Look();
    /// What cannot be removed stays, without a word: see `Remaining`.
    void Run();
    /// Ends either behind the file in hand.
    void Stop() { Stopped = true; }
    bool IsFinished() const { return Finished; }

    /// What `Look` has found, once it has finished.
    FileAmount const& Going() const { return ToGo; }
    QStringList const& Staying() const { return ToStay; }
    /// Of `Run`: files that were there.
    quint32 FileNumber() const { return Number; }
    quint32 FileCount() const { return Count; }
    quint64 BytesDone() const { return Done; }
    quint64 BytesTotal() const { return Total; }

    /// The listed files that are still there; one that is named twice counts once.
    static QStringList Remaining(Launcher::ApplicationManifest const& p_Manifest,
                                 QString const& p_Folder);

private:
    using Visitor = std::function<void(QString const&)>;

    void VisitLoginFiles(Visitor const& p_Visit) const;
    void VisitOthers(Visitor const& p_Visit) const;
    void Remove(QString const& p_Path);

    Launcher::ApplicationManifest Manifest;
    QString Folder;
    QStringList LoginFiles;
    FileAmount ToGo;
    QStringList ToStay;
    std::atomic<quint32> Count{0};
    std::atomic<quint32> Number{0};
    std::atomic<quint64> Total{0};
    std::atomic<quint64> Done{0};
    std::atomic<bool> Stopped{false};
    std::atomic<bool> Finished{false};
};

} // namespace Varnholt::Host
