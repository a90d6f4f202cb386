#include "GameModules/Pelmora/LoginScreen.hpp"

#include "GameModules/FileReplacement.hpp"

#include <QFile>

namespace Varnholt::Launcher {

namespace {

void RemoveIfPresent(QString const& p_Path)
{
    if (QFile::exists(p_Path))
        QFile::remove(p_Path);
}

} // namespace

LoginScreen::LoginScreen(QString const& p_Folder)
    : Layout(p_Folder + QLatin1String(c_Layout))
    , LayoutTemplate(Layout + QLatin1String(c_TemplateSuffix))
    , Script(p_Folder + QLatin1String(c_Script))
    , ScriptTemplate(Script + QLatin1String(c_TemplateSuffix))
{
}

void LoginScreen::Remove() const
{
    RemoveIfPresent(Layout);
    RemoveIfPresent(Script);
}

void LoginScreen::Build(QString const& p_Login, QString const& p_Password) const
{
    if (!QFile::exists(LayoutTemplate) || !QFile::exists(ScriptTemplate) || p_Login.isEmpty() ||
        p_Password.isEmpty())
        return;
    QFile::copy(LayoutTemplate, Layout);
    QFile::copy(ScriptTemplate, Script);

    QFile layout(Layout);
    if (!layout.open(QIODevice::ReadOnly))
        return;
    QString text = QString::fromUtf8(layout.readAll());
    layout.close();
    text.replace(QLatin1String("{varnholt_autolog_login}"), p_Login);
    text.replace(QLatin1String("{varnholt_autolog_password}"), p_Password);

    // Nobody else on this machine may read the credentials: they come in a new file, which nobody
    // has open, with the permissions of the one that it replaces.
    layout.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    FileReplacement::Replace(Layout, text.toUtf8());
}

} // namespace Varnholt::Launcher
