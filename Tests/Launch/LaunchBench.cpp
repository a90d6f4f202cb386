#include "Tests/Launch/LaunchBench.hpp"

#include <QDir>
#include <QFileInfo>

namespace Varnholt::TestSupport {

using Launcher::ApplicationManifestFileEntry;

char const* const LaunchBench::c_Layout = "Interface/GlueXMl/AccountLogin.xml";
char const* const LaunchBench::c_Script = "Interface/GlueXMl/AccountLogin.lua";
char const* const LaunchBench::c_LayoutTemplate = "Interface/GlueXMl/AccountLogin.xml.origin";
char const* const LaunchBench::c_ScriptTemplate = "Interface/GlueXMl/AccountLogin.lua.origin";
char const* const LaunchBench::c_Executable =
    "World of Warcraft.app/Contents/MacOS/World of Warcraft";

LaunchBench::LaunchBench()
    : GameFolder(QStringLiteral("My Game/"))
    , Game(Folder + QLatin1String(c_Executable))
    , Host(App, TestHost::Worker::ByHand)
{
    Host.SetSetting(QStringLiteral("pelmora_app.Installed"), true);
    Host.SetSetting(QStringLiteral("pelmora_app.InstallFolder"), Folder);
    Game.Write();
    AddEntry(QString::fromLatin1(c_Executable), Launcher::c_GameExecutableFlag);
}

LaunchBench::~LaunchBench()
{
    if (QFileInfo const executable(Game.Path); executable.isFile() && executable.isExecutable())
        static_cast<void>(RunUntilStarted(LoggedStarts()));
}

void LaunchBench::AddEntry(QString const& p_Path, qint32 p_Flags)
{
    ApplicationManifestFileEntry entry;
    entry.Path = p_Path;
    entry.Flags = p_Flags;
    App.Manifest.Files.push_back(entry);
}

void LaunchBench::PutTemplates()
{
    Put(c_LayoutTemplate, "login {varnholt_autolog_login} password {varnholt_autolog_password} .");
    Put(c_ScriptTemplate, "script {varnholt_autolog_login}");
}

void LaunchBench::PutLiveFiles()
{
    Put(c_Layout, "layout of before");
    Put(c_Script, "script of before");
}

bool LaunchBench::RunUntilStarted(int p_Times)
{
    return Host.RunUntil([&] { return Game.Starts().size() >= p_Times; });
}

} // namespace Varnholt::TestSupport
