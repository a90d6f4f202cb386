#include "GameModules/Pelmora/Pelmora.hpp"

#include "GameModules/Pelmora/LoginScreen.hpp"

#include <QFile>

namespace Varnholt::Launcher {

bool Pelmora::Start(QString p_Login, QString p_Password)
{
    GetInstallationPath();
    QString const folder = Folder();
    if (!folder.isEmpty()) {
        QString const client64 = folder + QLatin1String("Wow-64.exe");
        if (QFile::exists(client64))
            QFile::rename(client64, client64 + QLatin1String(".disabled"));

        LoginScreen const loginScreen(folder);
        loginScreen.Remove();
        // A second instance is not logged in: it would throw the first one out.
        if (IsGameRunning()) {
            p_Login.clear();
            p_Password.clear();
        }
        loginScreen.Build(p_Login, p_Password);
    }
    return StandartApplication::Start(p_Login, p_Password);
}

} // namespace Varnholt::Launcher
