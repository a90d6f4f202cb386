#include "Tests/Runs/Game.hpp"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

#include <sys/stat.h>

#include <atomic>

namespace Varnholt::TestSupport {

namespace {

std::function<bool(int)> s_ContinueAnswer;
std::atomic<int> s_ContinueQuestions{0};

} // namespace

Game::Game(TestHost::Worker p_Worker)
    : Folder(QDir(Temporary.path()).canonicalPath() + QLatin1String("/Game/"))
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

void Game::Put(QString const& p_File, QByteArray const& p_Bytes) const
{
    QString const path = Path(p_File);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(p_Bytes) != p_Bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray Game::Read(QString const& p_File) const
{
    return ContentOf(Path(p_File));
}

bool Game::Has(QString const& p_File) const
{
    return QFile::exists(Path(p_File));
}

int Game::Mode(QString const& p_File) const
{
    constexpr unsigned c_PermissionBits = 07777;
    struct stat status {};
    if (stat(Path(p_File).toUtf8().constData(), &status) != 0)
        return -1;
    return static_cast<int>(status.st_mode & c_PermissionBits);
}

QStringList Game::FilesOnDisk() const
{
    QStringList names;
    QDirIterator files(Folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        names += files.next().mid(Folder.size());
    names.sort();
    return names;
}

QStringList Game::Listed() const
{
    QStringList paths;
    for (auto const& entry : App.FilesToDownload)
        paths += entry.Path;
    return paths;
}

QStringList Game::Requested(ScriptedServer const& p_Server) const
{
    QString const prefix = Content.ServerPath(QString());
    QStringList paths;
    for (RecordedRequest const& request : p_Server.Requests())
        if (request.Path.startsWith(prefix))
            paths += request.Path.mid(prefix.size());
    return paths;
}

int Game::Requests(QString const& p_File) const
{
    return Server.Count(Content.ServerPath(p_File));
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

QByteArray ContentOf(QString const& p_Path)
{
    QFile file(p_Path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray const bytes = file.readAll();
    return bytes.isNull() ? QByteArray("") : bytes;
}

} // namespace Varnholt::TestSupport
