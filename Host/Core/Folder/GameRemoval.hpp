#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QStringList>

#include <atomic>

namespace Varnholt::Host {

/// Removes what a build and the module have put into a game folder: the login screen and its
/// secrets first, the files, their beginnings and the folders that become empty, the pending lists
/// last. What is the player's own stays. `Run` on one thread, the rest on any.
class GameRemoval {
public:
    /// \param p_Folder ends in "/" \param p_LoginFiles see `ModuleInfo`
    GameRemoval(Launcher::ApplicationManifest p_Manifest, QString p_Folder,
                QStringList p_LoginFiles);

    /// What cannot be removed stays, without a word: see `Remaining`.
    void Run();
    /// Ends `Run` behind the file in hand.
    void Stop() { Stopped = true; }
    bool IsFinished() const { return Finished; }
    quint32 FileNumber() const { return Number; }
    quint32 FileCount() const { return Count; }

    /// The listed files that are still there; one that is named twice counts once.
    static QStringList Remaining(Launcher::ApplicationManifest const& p_Manifest,
                                 QString const& p_Folder);

private:
    void RemoveLoginFiles() const;
    void RemoveEmptyFolders(QString const& p_Path) const;

    Launcher::ApplicationManifest Manifest;
    QString Folder;
    QStringList LoginFiles;
    quint32 Count;
    std::atomic<quint32> Number{0};
    std::atomic<bool> Stopped{false};
    std::atomic<bool> Finished{false};
};

} // namespace Varnholt::Host
