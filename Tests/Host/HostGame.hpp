#pragma once

#include "Tests/Support/GameWithServer.hpp"

#include <QVariant>

namespace Varnholt::TestSupport {

/// What a host works with: a content server, a folder to install into, a settings file.
class HostGame : public GameWithServer {
public:
    /// \param p_Folder of the game, below a folder of its own
    explicit HostGame(QString const& p_Folder = QString::fromUtf8("Jeux été/Game/"));

    /// Adds the files of a plain build: base files in two folders and both languages, two streamed
    /// ones. \return itself
    HostGame& AddFiles();
    /// Puts the build on the server. \return itself
    HostGame& Publish();
    /// Lets a file's content stand still behind so many bytes. \return the gate that lets it go on
    QString HoldContent(QString const& p_File, qint64 p_Bytes);
    /// Makes the game one that was installed completely, without running a host.
    void PutInstalled();

    /// Names of all files below the folder but the host's lock, in alphabetical order.
    QStringList FilesOnDisk() const;
    /// Whether a file was asked for from this byte on, and from then on for nothing before it.
    bool WasResumedAt(QString const& p_File, qint64 p_Offset) const;

    QVariant Setting(QString const& p_Key) const;
    void SetSetting(QString const& p_Key, QVariant const& p_Value) const;
    QStringList SettingKeys() const;
    /// The mark of a run that was begun and not completed.
    bool IsMarkedUnfinished() const;

    QString SettingsFile;
};

} // namespace Varnholt::TestSupport
