#include "GameModules/StandartApplication.hpp"

#include "GameModules/TextFilePatch.hpp"

#include <QMutexLocker>

namespace Varnholt::Launcher {

std::vector<ApplicationManifestLocale> StandartApplication::GetAvailableLocales() const
{
    QMutexLocker const lock(&RunMutex);
    std::vector<ApplicationManifestLocale> locales;
    locales.reserve(Manifest.Locales.size());
    for (auto const& row : Manifest.Locales)
        locales.push_back(row.second);
    return locales;
}

QString StandartApplication::GetAppLocale()
{
    return ReadSetting(SettingKey(".InstallLocale"), CurrentLauncherLocale().Code).toString();
}

void StandartApplication::PatchWoWTextFile(QString p_FilePath, QString p_Key, QString p_Line,
                                           bool p_CreateIfMissing)
{
    TextFilePatch::Apply(p_FilePath, p_Key, p_Line, p_CreateIfMissing);
}

} // namespace Varnholt::Launcher
