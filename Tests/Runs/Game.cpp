#include "Tests/Runs/Game.hpp"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

#include <atomic>

namespace Varnholt::TestSupport {

namespace {

std::function<bool(int)> s_ContinueAnswer;
std::atomic<int> s_ContinueQuestions{0};

} // namespace

Game::Game(TestHost::Worker p_Worker)
    : GameWithServer(QStringLiteral("Game/"), QStringLiteral("test_app"))
    , Host(App, p_Worker)
{
    QDir().mkpath(Folder);
    Server.BecomeDefaultContentServer();
}

Game::~Game()
{
    Host.StopWorker();
    s_ContinueAnswer = nullptr;
    App.BeginRun(); // whatever is left of the last one ends quietly
}

Game& Game::Add(SampleFile const& p_File)
{
    Content.Add(p_File);
    return *this;
}

Game& Game::Publish()
{
    Content.Publish(Server);
    bool success = false;
    App.Manifest = Launcher::ParseApplicationManifest(Content.ManifestBytes(), success, false);
    App.CdnHosts = QStringList(Server.Host());
    return *this;
}

Game& Game::Install()
{
    Host.SetSetting(App.SettingKey(".Installed"), true);
    Host.SetSetting(App.SettingKey(".InstallFolder"), Folder);
    return *this;
}

void Game::Begin(bool p_FirstBuild)
{
    Publish();
    Install();
    App.IsFirstManifestBuild = p_FirstBuild;
    App.OnManifestReceived();
}

bool Game::RunUntilRequested(QString const& p_File, int p_Times)
{
    return Host.RunUntil([&] { return Requests(p_File) >= p_Times; });
}

bool Game::RunUntilPart(QString const& p_File, qint64 p_Bytes)
{
    QString const part = Path(p_File) + QLatin1String(".part");
    return Host.RunUntil(
        [&] { return App.CurrentDownload != nullptr && QFileInfo(part).size() == p_Bytes; });
}

bool Game::RunUntilSizes(quint32 p_Count)
{
    return Host.RunUntil([&] {
        QMutexLocker const lock(&App.RunMutex);
        return App.SizeRepliesReceived == p_Count;
    });
}

bool Game::RunUntilFile(quint32 p_Index)
{
    return Host.RunUntil([&] {
        QMutexLocker const lock(&App.RunMutex);
        return App.CurrentDownloadIndex == p_Index;
    });
}

Launcher::ApplicationUISetting Game::Progress()
{
    QMutexLocker const lock(&App.RunMutex);
    return App.UISetting;
}

QStringList Game::Listed() const
{
    QStringList paths;
    for (auto const& entry : App.FilesToDownload)
        paths += entry.Path;
    return paths;
}

void Game::AnswerContinue(std::function<bool(int)> p_Answer)
{
    s_ContinueQuestions = 0;
    s_ContinueAnswer = std::move(p_Answer);
    App.ShouldContinue = [] {
        int const question = ++s_ContinueQuestions;
        return !s_ContinueAnswer || s_ContinueAnswer(question);
    };
}

} // namespace Varnholt::TestSupport
