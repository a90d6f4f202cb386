#include "Host/Core/Settings/InstallRecord.hpp"

#include "Launcher/Helper/Paths.hpp"

namespace Varnholt::Host {

namespace {

constexpr char c_Folder[] = ".InstallFolder";

} // namespace

InstallRecord::InstallRecord(HostSettings& p_Settings, QString p_AppId)
    : Settings(p_Settings)
    , AppId(std::move(p_AppId))
{
}

QStringList InstallRecord::Folders(HostSettings const& p_Settings)
{
    QStringList folders;
    for (QString const& key : p_Settings.Keys())
        if (key.endsWith(QLatin1String(c_Folder)))
            folders += p_Settings.Value(key).toString();
    return folders;
}

QString InstallRecord::HostKey(char const* p_Name) const
{
    return QStringLiteral("host/%1/%2").arg(AppId, QLatin1String(p_Name));
}

bool InstallRecord::IsInstalled() const
{
    return Settings.Value(ModuleKey(".Installed"), false).toBool() && !Folder().isEmpty();
}

QString InstallRecord::Folder() const
{
    QString const folder = Settings.Value(ModuleKey(c_Folder)).toString();
    return folder.isEmpty() ? folder : Launcher::Helper::Paths::WithSlash(folder);
}

bool InstallRecord::IsUnfinished() const
{
    return Settings.Value(HostKey("unfinished"), false).toBool();
}

void InstallRecord::MarkUnfinished()
{
    Settings.SetValue(HostKey("unfinished"), true);
}

std::optional<Failure> InstallRecord::MarkComplete(QString const& p_Build)
{
    Settings.SetValue(HostKey("build"), p_Build);
    Settings.Remove(HostKey("unfinished"));
    return Settings.Save();
}

void InstallRecord::Forget()
{
    Settings.Remove(HostKey("build"));
    Settings.Remove(HostKey("unfinished"));
}

QString InstallRecord::CompletedBuild() const
{
    return Settings.Value(HostKey("build")).toString();
}

} // namespace Varnholt::Host
