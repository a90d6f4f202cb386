#include "Tests/Host/PlayedGame.hpp"

#include "Launcher/Helper/Process.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_GameScript = R"(#!/bin/sh
printf '%s\n' "$@" >"$0.args"
env >"$0.env"
ps auxwwwe >"$0.ps"
echo started >>"$0.starts"
while [ -e "$0.run" ]; do sleep 0.02; done
)";

} // namespace

PlayedGame::PlayedGame()
    : PlayedGame(c_GameScript)
{
}

PlayedGame::PlayedGame(QByteArray const& p_Program, qint32 p_Flags)
{
    AddFiles();
    Content.Add({Program, p_Program, p_Flags});
    for (QString const& screen : {Layout, Script})
        Content.Add({screen + ".origin", "<{varnholt_autolog_login}|{varnholt_autolog_password}>"});
    Publish();
    PutInstalled();
}

PlayedGame::~PlayedGame()
{
    LetGo();
}

Outcome PlayedGame::Play(QStringList const& p_Options, QByteArray const& p_Input) const
{
    return HostProcess(*this, QStringList{"-q", "play"} + p_Options).Finish(p_Input);
}

int PlayedGame::Starts() const
{
    return Read(Program + ".starts").count('\n');
}

bool PlayedGame::WaitForStarts(int p_Count) const
{
    return QTest::qWaitFor([&] { return Starts() == p_Count; }, TestHost::c_Timeout);
}

bool PlayedGame::IsRunning() const
{
    return Launcher::Helper::Process::IsProcessRunningIn(Folder, {"macos/world of warcraft"},
                                                         nullptr);
}

void PlayedGame::LetGo() const
{
    QFile::remove(Path(Program + ".run"));
    if (!QTest::qWaitFor([this] { return !IsRunning(); }, TestHost::c_Timeout))
        qFatal("the game does not quit");
}

} // namespace Varnholt::TestSupport
