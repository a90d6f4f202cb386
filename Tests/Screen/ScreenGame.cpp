#include "Tests/Screen/ScreenGame.hpp"

#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QFileInfo>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr char c_GameScript[] = R"(#!/bin/sh
echo started >>"$0.starts"
while [ -e "$0.run" ]; do sleep 0.02; done
)";

} // namespace

ScreenGame::ScreenGame(QSize const& p_Size, QString const& p_Language)
    : HostGame(QStringLiteral("home/Games/%1/").arg(c_Name))
    , Shown(p_Size.width(), p_Size.height())
{
    constexpr qint32 c_Executable = 0x02 | 0x04 | 0x08; // of either platform

    AddFiles();
    Content.Add({c_Program, c_GameScript, c_Executable});
    for (char const* const screen : {"xml", "lua"})
        Content.Add({QStringLiteral("Interface/GlueXMl/AccountLogin.%1.origin").arg(screen),
                     "<{varnholt_autolog_login}|{varnholt_autolog_password}>"});
    Publish();
    SetSetting("window/language", p_Language);
}

ScreenGame::~ScreenGame()
{
    LetGo();
    Close();
}

bool ScreenGame::Open(QStringList const& p_Options, QString const& p_Title)
{
    Start(Program, SettingsFile, p_Options);
    return Program.waitForStarted() && Shown.Focus(p_Title);
}

void ScreenGame::Start(QProcess& p_Program, QString const& p_Settings,
                       QStringList const& p_Options) const
{
    QProcessEnvironment environment = HostProcess::Environment(*this);
    environment.insert("DISPLAY", Shown.Display());
    environment.insert("QT_QPA_PLATFORM", "xcb");
    for (char const* const name : {"XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), Base);
    if (!Home.isEmpty())
        environment.insert("HOME", Home);
    for (char const* const name : {"DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    p_Program.setProcessEnvironment(environment);
    p_Program.setWorkingDirectory(Base);
    p_Program.setProcessChannelMode(QProcess::ForwardedChannels);
    p_Program.start(VARNHOLT_WINDOW_PROGRAM,
                    QStringList{"--settings", p_Settings, "--content-url", Server.BaseUrl()} +
                        p_Options);
}

int ScreenGame::Close()
{
    if (Program.state() == QProcess::NotRunning)
        return Program.exitCode();
    Program.terminate();
    return Program.waitForFinished() ? Program.exitCode() : -1;
}

void ScreenGame::Kill()
{
    Program.kill();
    Program.waitForFinished();
}

bool ScreenGame::Press(QString const& p_Title, QStringList const& p_Keys)
{
    if (!Shown.Focus(p_Title))
        return false;
    Shown.Press(p_Keys);
    return true;
}

bool ScreenGame::WaitForTitle(QString const& p_Title)
{
    return WaitUntil([&] { return Shown.Window('^' + p_Title + '$') != 0; });
}

bool ScreenGame::WaitUntil(std::function<bool()> const& p_Condition)
{
    return QTest::qWaitFor(p_Condition, TestHost::c_Timeout);
}

void ScreenGame::LetGo() const
{
    QFile::remove(Path(QString(c_Program) + ".run"));
}

} // namespace Varnholt::TestSupport
