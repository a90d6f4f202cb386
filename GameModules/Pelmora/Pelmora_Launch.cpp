#include "GameModules/Pelmora/Pelmora.hpp"

#include "GameModules/Pelmora/LoginScreen.hpp"

#include <QFile>

namespace Varnholt::Launcher {

bool Pelmora::Start(QString p_Login, QString p_Password)
{
    GetInstallationPath();
    QString const folder = Folder();
    if (!folder.isEmpty()) {
        Links.Begin(folder);
        auto const leadsInside = [&](QString const& p_Path) {
            return !Links.LeadsOut(folder, p_Path);
        };
        QString const client64 = QStringLiteral("Wow-64.exe");
        QString const disabled = client64 + QLatin1String(".disabled");
        if (QFile::exists(folder + client64) && leadsInside(client64) && leadsInside(disabled))
            QFile::rename(folder + client64, folder + disabled);

        LoginScreen const loginScreen(folder);
        QString const layout = QLatin1String(LoginScreen::c_Layout);
        QString const script = QLatin1String(LoginScreen::c_Script);
        QString const suffix = QLatin1String(LoginScreen::c_TemplateSuffix);
        bool const isOurs = Links.MakeRoom(folder, layout) && Links.MakeRoom(folder, script);
        if (isOurs)
            loginScreen.Remove();
        // A second instance is not logged in: it would throw the first one out.
        if (IsGameRunning()) {
            p_Login.clear();
            p_Password.clear();
        }
        if (isOurs && leadsInside(layout + suffix) && leadsInside(script + suffix))
            loginScreen.Build(p_Login, p_Password);
    }
    return StandartApplication::Start(p_Login, p_Password);
}

} // namespace Varnholt::Launcher
