#pragma once

#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

namespace Varnholt::TestSupport {

/// What a host works with: a content server, a folder to install into, a settings file.
class HostGame {
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

    QString Path(QString const& p_File) const { return Folder + p_File; }
    bool Has(QString const& p_File) const;
    QByteArray Read(QString const& p_File) const;
    void Put(QString const& p_File, QByteArray const& p_Bytes) const;
    /// Names of the build's files of a language that are missing or differ on the disk.
    QStringList Wrong(QString const& p_Locale = QStringLiteral("enUS")) const;
    /// Names of all files below the folder but the host's lock, in alphabetical order.
    QStringList FilesOnDisk() const;
    /// The build's files that were asked for, each as often as it was, in alphabetical order.
    QStringList Requested() const;
    int Requests(QString const& p_File) const;
    /// Whether the latest request for a file began at this byte.
    bool WasResumedAt(QString const& p_File, qint64 p_Offset) const;
    /// Begins to count in `Requested()` anew.
    void ForgetRequests() { Forgotten = Server.Requests().size(); }

    QVariant Setting(QString const& p_Key) const;
    void SetSetting(QString const& p_Key, QVariant const& p_Value) const;
    QStringList SettingKeys() const;
    /// The mark of a run that was begun and not completed.
    bool IsMarkedUnfinished() const;

    QTemporaryDir Temporary;
    QString Base;   ///< canonical, of everything here
    QString Folder; ///< ends in "/"; not there at first
    QString SettingsFile;
    ScriptedServer Server;
    SampleContent Content;

private:
    std::size_t Forgotten = 0;
};

} // namespace Varnholt::TestSupport
