#include "Tests/Host/HostGame.hpp"

#include "Host/Core/Folder/FolderLock.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QDir>
#include <QDirIterator>
#include <QSettings>

namespace Varnholt::TestSupport {

HostGame::HostGame(QString const& p_Folder)
    : GameWithServer(p_Folder)
    , SettingsFile(Base + QStringLiteral("settings/host.ini"))
{
}

HostGame& HostGame::AddFiles()
{
    constexpr qint32 c_FirstBuildOnly = 0x20;

    Content.Add({"Data/base.MPQ", SampleContent::Bytes(60000, 1)})
        .Add({"Data/first build.MPQ", SampleContent::Bytes(30000, 2), c_FirstBuildOnly})
        .Add({"Data/enUS/locale.MPQ", SampleContent::Bytes(2000, 3), 0, "enUS"})
        .Add({"Data/frFR/locale.MPQ", SampleContent::Bytes(2100, 4), 0, "frFR"})
        .Add({"readme.txt", "read me"})
        .Add({"Data/streamed 1.MPQ", SampleContent::Bytes(9000, 5), 0, {}, true})
        .Add({"Data/streamed 2.MPQ", SampleContent::Bytes(8000, 6), 0, {}, true});
    return *this;
}

HostGame& HostGame::Publish()
{
    Content.Publish(Server);
    return *this;
}

QString HostGame::HoldContent(QString const& p_File, qint64 p_Bytes)
{
    QString path = Content.ServerPath(p_File);
    Server.Script("GET " + path).Then(Answer::SilentAfter(p_Bytes));
    return path;
}

void HostGame::PutInstalled()
{
    for (SampleFile const& file : Content.Files)
        if (file.Locale.isEmpty() || file.Locale == QLatin1String("enUS"))
            Put(file.Path, file.Bytes);
    SetSetting("pelmora_app.Installed", true);
    SetSetting("pelmora_app.InstallFolder", Folder);
    SetSetting("pelmora_app.ManifestBuilt", true);
    SetSetting("host/pelmora_app/build", Content.Build);
}

QStringList HostGame::FilesOnDisk() const
{
    QStringList names = GameWithServer::FilesOnDisk();
    names.removeOne(Host::FolderLock::c_File);
    return names;
}

bool HostGame::WasResumedAt(QString const& p_File, qint64 p_Offset) const
{
    QStringList ranges;
    for (RecordedRequest const& request : Server.Requests(Content.ServerPath(p_File)))
        if (request.Method == "GET")
            ranges += request.Header("Range");
    auto const begin = [](QString const& p_Range) {
        return p_Range.mid(p_Range.indexOf('=') + 1).section('-', 0, 0).toLongLong();
    };
    // A server that seems to be slow is asked once more, for what is missing by then.
    auto const resumed = std::find_if(ranges.begin(), ranges.end(), [&](QString const& p_Range) {
        return begin(p_Range) == p_Offset;
    });
    bool const was =
        resumed != ranges.end() && std::all_of(resumed, ranges.end(), [&](QString const& p_Range) {
            return begin(p_Range) >= p_Offset;
        });
    if (!was)
        qWarning() << "asked for" << ranges;
    return was;
}

QVariant HostGame::Setting(QString const& p_Key) const
{
    return QSettings(SettingsFile, QSettings::IniFormat).value(p_Key);
}

void HostGame::SetSetting(QString const& p_Key, QVariant const& p_Value) const
{
    QDir().mkpath(QFileInfo(SettingsFile).path());
    QSettings settings(SettingsFile, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    settings.setValue(p_Key, p_Value);
}

QStringList HostGame::SettingKeys() const
{
    QStringList keys = QSettings(SettingsFile, QSettings::IniFormat).allKeys();
    keys.sort();
    return keys;
}

bool HostGame::IsMarkedUnfinished() const
{
    return Setting("host/pelmora_app/unfinished").toBool();
}

} // namespace Varnholt::TestSupport
