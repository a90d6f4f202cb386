#include "Tests/Suspend/PausableGame.hpp"

#include <QElapsedTimer>
#include <QThread>

namespace Varnholt::TestSupport {

ScriptedServer::PathScript PausableGame::ScriptTransfer(QString const& p_File)
{
    return Server.Script(Content.ServerPath(p_File)).Then(Answer::Normal());
}

void PausableGame::Stall(QString const& p_File, qint64 p_Bytes)
{
    ScriptTransfer(p_File).Then(Answer::SilentAfter(p_Bytes));
}

void PausableGame::OpenGate(QString const& p_File)
{
    constexpr int c_MoreThanAnyTestNeeds = 1000;
    Server.OpenGate(Content.ServerPath(p_File), c_MoreThanAnyTestNeeds);
}

bool PausableGame::RunUntilHandled()
{
    return Host.RunUntil([this] { return App.CurrentDownload == nullptr; });
}

bool PausableGame::WaitUntilEnded() const
{
    QElapsedTimer clock;
    clock.start();
    while (!App.CurrentDownload->AbortAcknowledged) {
        if (clock.elapsed() > TestHost::c_Timeout)
            return false;
        QThread::msleep(1);
    }
    return true;
}

} // namespace Varnholt::TestSupport
