#include "Host/Core/Session/HostSession.hpp"

#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Session/ModuleThread.hpp"

#include <QTimer>

namespace Varnholt::Host {

namespace {

constexpr int c_MostMilliseconds = 100;

/// Queued connections look the types up by the names that the signals give them.
void RegisterTypes()
{
    qRegisterMetaType<Failure>("Failure");
    qRegisterMetaType<GameEnd>("GameEnd");
    qRegisterMetaType<InstallStatus>("InstallStatus");
    qRegisterMetaType<ModuleInfo>("ModuleInfo");
    qRegisterMetaType<Notice>("Notice");
    qRegisterMetaType<RunResult>("RunResult");
    qRegisterMetaType<RunSnapshot>("RunSnapshot");
}

} // namespace

HostSession::HostSession(HostOptions const& p_Options, QObject* p_Parent)
    : QObject(p_Parent)
    , Module(new ModuleThread(p_Options))
{
    RegisterTypes();
    ModuleHost const* const host = &Module->Host();
    connect(host, &ModuleHost::Loaded, this, [this](ModuleInfo const& p_Info) {
        Game = p_Info.Name;
        Q_EMIT Opened(p_Info);
    });
    connect(host, &ModuleHost::LoadFailed, this, &HostSession::OpenFailed);
    connect(host, &ModuleHost::StatusRead, this, &HostSession::StatusRead);
    connect(host, &ModuleHost::Noticed, this, &HostSession::Noticed);
    connect(host, &ModuleHost::Ended, this, &HostSession::OnEnded);
    connect(host, &ModuleHost::GameStarted, this, &HostSession::GameStarted);
    connect(host, &ModuleHost::GameEnded, this, &HostSession::GameEnded);
    connect(host, &ModuleHost::FolderTaken, this, [this](quint64 p_Id, QString const& p_Folder) {
        if (UnderWay.count(p_Id) != 0 && Control.Listen(p_Folder, Game))
            Controlled = p_Id;
    });
    connect(host, &ModuleHost::Progressed, this, [this](RunSnapshot const& p_Snapshot) {
        if (UnderWay.empty())
            return;
        Control.Show(p_Snapshot);
        Q_EMIT Progressed(p_Snapshot);
    });
    connect(&Control, &ControlSocket::Received, this, &HostSession::OnMessage);
    connect(Module, &QThread::finished, this, [this] {
        EndWithoutModule(std::set<quint64>(UnderWay), {FailureKind::Interrupted, {}, {}});
        Q_EMIT Closed();
    });
    Module->start();
}

HostSession::~HostSession()
{
    Close();
    Module->LetGo(c_MostMilliseconds);
}

bool HostSession::HasLeftModule()
{
    return ModuleThread::IsAnyLeft();
}

QThread& HostSession::Thread()
{
    return *Module;
}

void HostSession::Open()
{
    Module->Post([](ModuleHost& p_Host) { p_Host.Load(); });
}

void HostSession::ReadStatus()
{
    Module->Post([](ModuleHost& p_Host) { p_Host.ReadStatus(); });
}

quint64 HostSession::Start(RunRequest const& p_Request)
{
    quint64 const id = ++LastId;
    UnderWay.insert(id);
    if (Module->isFinished()) // and nobody is left to refuse it
        QMetaObject::invokeMethod(
            this,
            [this, id] {
                EndWithoutModule({id}, {FailureKind::ModuleNotLoaded, Game, {}});
            },
            Qt::QueuedConnection);
    else
        Module->Post([id, p_Request](ModuleHost& p_Host) { p_Host.Start(id, p_Request); });
    return id;
}

void HostSession::Pause()
{
    if (UnderWay.empty())
        return;
    Paused = true;
    Module->Gate().Hold(); // seen by a thread that is busy
    Module->Post([](ModuleHost& p_Host) { p_Host.Pause(); });
}

void HostSession::Continue()
{
    Paused = false;
    Control.TellResumed();
    Module->Post([](ModuleHost& p_Host) { p_Host.Tell(&Job::Continue); });
}

void HostSession::SetRateLimit(quint64 p_BytesPerSecond)
{
    Module->Post([p_BytesPerSecond](ModuleHost& p_Host) { p_Host.SetRateLimit(p_BytesPerSecond); });
}

void HostSession::SetLanguage(QString const& p_Code)
{
    Module->Post([p_Code](ModuleHost& p_Host) { p_Host.SetLanguage(p_Code); });
}

void HostSession::StopRepair()
{
    Module->Post([](ModuleHost& p_Host) { p_Host.Tell(&Job::StopRepair); });
}

void HostSession::Interrupt()
{
    if (UnderWay.empty())
        return;
    Module->Gate().Interrupt();
    Module->Post([](ModuleHost& p_Host) { p_Host.Tell(&Job::Interrupt); });
    QTimer::singleShot(c_MostMilliseconds, this, [this, ids = UnderWay] {
        EndWithoutModule(ids, {FailureKind::Interrupted, {}, {}});
    });
}

void HostSession::Close()
{
    if (Module->isFinished()) {
        QMetaObject::invokeMethod(this, &HostSession::Closed, Qt::QueuedConnection);
        return;
    }
    Interrupt();
    Module->Post([](ModuleHost& p_Host) { p_Host.Close(); });
}

void HostSession::OnMessage(ControlMessage const& p_Message)
{
    if (p_Message.Kind == ControlMessage::Type::Pause)
        return Pause();
    if (p_Message.Kind == ControlMessage::Type::Resume)
        return Continue();
    SetRateLimit(p_Message.BytesPerSecond);
    if (p_Message.BytesPerSecond == 0)
        Q_EMIT Noticed({NoticeKind::RateUnlimited});
    else
        Q_EMIT Noticed({NoticeKind::RateLimited, ByteText(p_Message.BytesPerSecond)});
}

void HostSession::OnEnded(quint64 p_Id, RunResult const& p_Result)
{
    if (UnderWay.erase(p_Id) == 0)
        return; // its end was told already
    if (p_Id == Controlled)
        Control.End(p_Result);
    Paused = Paused && !UnderWay.empty();
    Q_EMIT Ended(p_Id, p_Result);
}

/// Called when the module has had its time to hear of an interruption, or is no more.
void HostSession::EndWithoutModule(std::set<quint64> const& p_Ids, Failure const& p_Why)
{
    RunResult result;
    result.Problem = p_Why;
    for (quint64 const id : p_Ids)
        OnEnded(id, result);
}

} // namespace Varnholt::Host
