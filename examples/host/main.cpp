// A launcher, as small as one can be: loads a module, lets it install its game, and ends.
//   example-host MODULE FOLDER SETTINGS-FILE
// What it owes to the module stands, numbered, in Launcher/Application/Application.hpp.

#include <GameModules/StandartApplication.hpp>

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QPluginLoader>
#include <QSettings>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace Varnholt::Launcher;

namespace {

constexpr std::chrono::milliseconds c_Poll{1}; // the queues cannot wake anybody
constexpr int c_QuietTurns = 3;                // an event may be on its way between two threads

QString s_SettingsFile;
std::atomic<bool> s_IsEnding{false};

void Say(QString const& p_Text)
{
    std::puts(qPrintable(p_Text));
}

// One object a call: many threads ask.
QSettings Settings()
{
    return {s_SettingsFile, QSettings::IniFormat};
}

/// The module calls these without a check, some of them on threads of its own.
void FillCallbackTable(Application& p_App)
{
    p_App.ErrorReporter = [](QString p_Message, bool) {
        Say(p_Message);
        QMetaObject::invokeMethod(qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
    };
    p_App.ReadSetting = [](QString p_Key, QVariant p_Default) {
        return Settings().value(p_Key, p_Default);
    };
    p_App.WriteSetting = [](QString p_Key, QVariant p_New) { Settings().setValue(p_Key, p_New); };
    p_App.ListSettingKeys = [] { return Settings().allKeys(); };
    p_App.RemoveSetting = [](QString p_Key) { Settings().remove(p_Key); };
    p_App.CurrentLauncherLocale = [] { return LauncherLocale::Available().front(); };
    p_App.IsDownloadBlocked = [] { return false; };
    p_App.NotifyDownloadStarting = [] {};
    p_App.NotifyDownloadFinished = [] {};
    p_App.ShouldContinue = [] { return !s_IsEnding; };
    p_App.UseDevChannel = [] { return false; };
}

/// Runs the first closure of a queue, outside of its mutex. \return false when there is none
/// \param p_Busy changed under the mutex: a closure is in the queue or seen here
bool RunNext(std::queue<std::function<void()>>& p_Queue, QMutex& p_Mutex, bool& p_Busy)
{
    std::function<void()> closure;
    {
        QMutexLocker const lock(&p_Mutex);
        p_Busy = !p_Queue.empty();
        if (!p_Busy)
            return false;
        closure = std::move(p_Queue.front());
        p_Queue.pop();
    }
    closure();
    return true;
}

/// Whether nothing is under way, which is how a run ends.
bool IsQuiet(StandartApplication& p_Module, bool const& p_WorkerIsBusy)
{
    QMutexLocker const asyncLock(&p_Module.AsyncQueueMutex);
    QMutexLocker const syncLock(&p_Module.SyncQueueMutex);
    return !p_WorkerIsBusy && p_Module.AsyncQueue.empty() && p_Module.SyncQueue.empty() &&
           p_Module.CurrentDownload == nullptr && p_Module.ContentRequests.empty() &&
           p_Module.ContentSizeRequests.empty();
}

/// Loads a plug-in of this interface and layout; of another one no code is run.
StandartApplication* Load(QPluginLoader& p_Loader)
{
    QJsonObject const metaData = p_Loader.metaData();
    bool const isOurs = metaData["IID"] == Varnholt_Application_iid &&
                        metaData["MetaData"].toObject()["layout"] == c_ApplicationLayout;
    if (!isOurs || p_Loader.instance() == nullptr)
        return nullptr;
    // By its name: the class that the object is made of is the module's copy, not ours.
    return static_cast<StandartApplication*>(
        p_Loader.instance()->qt_metacast("Varnholt::Launcher::StandartApplication"));
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    QCoreApplication program(p_Count, p_Arguments);
    QStringList const arguments = program.arguments();
    QPluginLoader loader(QDir().absoluteFilePath(arguments.value(1)));
    std::unique_ptr<StandartApplication> const module(Load(loader));
    if (!module || p_Count != 4) {
        Say(QStringLiteral("usage: example-host MODULE FOLDER SETTINGS-FILE"));
        return EXIT_FAILURE;
    }
    QString const folder = QDir(arguments[2]).absolutePath() + QLatin1Char('/');
    s_SettingsFile = arguments[3];
    FillCallbackTable(*module);

    bool isBusy = false, isTurn = false; // the worker, the application thread
    std::thread worker([&] {
        while (!s_IsEnding)
            if (!RunNext(module->AsyncQueue, module->AsyncQueueMutex, isBusy))
                std::this_thread::sleep_for(c_Poll);
    });
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &program, [&, quietTurns = 0]() mutable {
        RunNext(module->SyncQueue, module->SyncQueueMutex, isTurn);
        if (module->UISettingChanged.exchange(false)) // where a launcher would draw
            Say(QString::number(module->UISetting.Download.Percent) + QStringLiteral(" %"));
        quietTurns = IsQuiet(*module, isBusy) ? quietTurns + 1 : 0;
        auto const state = module->UISetting.State;
        if (quietTurns >= c_QuietTurns && state == ApplicationUISetting::StateNotInstalled)
            module->Install(folder, false);
        else if (quietTurns >= c_QuietTurns && state == ApplicationUISetting::StateInstalled)
            QCoreApplication::exit(EXIT_SUCCESS);
    });
    timer.start(c_Poll);
    module->Init();
    int const status = QCoreApplication::exec();

    module->SuspendDownload();
    s_IsEnding = true;
    worker.join();
    while (RunNext(module->SyncQueue, module->SyncQueueMutex, isTurn) ||
           RunNext(module->AsyncQueue, module->AsyncQueueMutex, isBusy))
        QCoreApplication::processEvents();
    module->Uninit();
    if (status == EXIT_SUCCESS)
        Say(module->GetName() + QStringLiteral(" is installed in ") + folder);
    return status;
}
