#include "Lantern.hpp"

#include <Launcher/Helper/Process.hpp>

#include <QFile>

using Varnholt::Launcher::ApplicationRessource;

Lantern::Lantern()
    : StandartApplication(QStringLiteral("Lantern Coast"),
                          QStringLiteral(VARNHOLT_MODULE_IDENTIFIER))
{
}

QString Lantern::GetRessource(ApplicationRessource::Type p_Type)
{
    switch (p_Type) {
    case ApplicationRessource::BackgroundImage:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/background.png");
    case ApplicationRessource::BackgroundColor:
        return QStringLiteral("#101820");
    case ApplicationRessource::BackgroundPlacement:
        return QStringLiteral("top right");
    case ApplicationRessource::Icon:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/icon.png");
    case ApplicationRessource::IconSelected:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/icon_active.png");
    case ApplicationRessource::ThemeColor:
        return QStringLiteral("16,24,32");
    default: // a host does without the rest
        return {};
    }
}

bool Lantern::IsGameRunning()
{
    // In lower case, as the process list is compared; whole, since a host's command line may hold
    // the folder and this module's name.
    QString const program = (Folder() + QStringLiteral("Lantern")).toLower();
    return Varnholt::Launcher::Helper::Process::IsProcessRunningIn(Folder(), {program}, nullptr);
}

bool Lantern::Start(QString p_Login, QString p_Password)
{
    QString const folder = Folder();
    QString const screen = QStringLiteral("login/screen.txt");
    // Never through a link that leads out of the game's folder.
    if (!folder.isEmpty() && Links.MakeRoom(folder, screen)) {
        QFile::remove(folder + screen);
        if (!p_Login.isEmpty() && !p_Password.isEmpty() && !IsGameRunning())
            QFile::copy(folder + screen + QStringLiteral(".model"), folder + screen);
    }
    return StandartApplication::Start(p_Login, p_Password);
}

void Lantern::SetAppLocale(QString p_Code)
{
    WriteSetting(SettingKey(".InstallLocale"), p_Code);
    QString const folder = Folder();
    QString const config = QStringLiteral("settings/lantern.conf");
    if (!folder.isEmpty() && Links.MakeRoom(folder, config))
        PatchWoWTextFile(folder + config, QStringLiteral("language"),
                         QStringLiteral("language = %1").arg(p_Code), true);
}

void Lantern::AfterOnManifestReceived()
{
    if (IsInstalled())
        SetAppLocale(GetAppLocale());
}
