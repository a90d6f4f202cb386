#include "Host/Core/Session/HostSession.hpp"

#include "Host/Core/Module/ModuleHost.hpp"

#include <QCoreApplication>
#include <QDir>

namespace Varnholt::Host {

namespace {

/// Queued connections look the types up by the names that the signals give them.
void RegisterTypes()
{
    qRegisterMetaType<Failure>("Failure");
    qRegisterMetaType<InstallStatus>("InstallStatus");
    qRegisterMetaType<ModuleInfo>("ModuleInfo");
    qRegisterMetaType<RunResult>("RunResult");
    qRegisterMetaType<RunSnapshot>("RunSnapshot");
}

} // namespace

HostSession::HostSession(HostOptions const& p_Options, QObject* p_Parent)
    : QObject(p_Parent)
    , Settings(p_Options.SettingsFile.isEmpty() ? HostOptions::DefaultSettingsFile()
                                                : p_Options.SettingsFile)
    , Host(new ModuleHost(p_Options, Settings))
{
    RegisterTypes();
    QDir::setCurrent(QCoreApplication::applicationDirPath());

    Host->moveToThread(&ModuleThread);
    connect(Host, &ModuleHost::Loaded, this, &HostSession::Opened);
    connect(Host, &ModuleHost::LoadFailed, this, &HostSession::OpenFailed);
    connect(Host, &ModuleHost::StatusRead, this, &HostSession::StatusRead);
    connect(Host, &ModuleHost::Progressed, this, &HostSession::Progressed);
    connect(Host, &ModuleHost::Noticed, this, &HostSession::Noticed);
    connect(Host, &ModuleHost::Ended, this, &HostSession::Ended);
    connect(Host, &ModuleHost::Closed, Host, &QObject::deleteLater);
    connect(Host, &QObject::destroyed, &ModuleThread, &QThread::quit, Qt::DirectConnection);
    ModuleThread.setObjectName(QStringLiteral("module"));
    ModuleThread.start();
}

HostSession::~HostSession()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->Close(); }, Qt::QueuedConnection);
    ModuleThread.wait();
}

void HostSession::Open()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->Load(); }, Qt::QueuedConnection);
}

void HostSession::ReadStatus()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->ReadStatus(); }, Qt::QueuedConnection);
}

void HostSession::Start(RunRequest const& p_Request)
{
    QMetaObject::invokeMethod(
        Host, [host = Host, p_Request] { host->Start(p_Request); }, Qt::QueuedConnection);
}

void HostSession::Pause()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->Pause(); }, Qt::QueuedConnection);
}

void HostSession::Continue()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->Continue(); }, Qt::QueuedConnection);
}

void HostSession::SetRateLimit(quint64 p_BytesPerSecond)
{
    QMetaObject::invokeMethod(
        Host, [host = Host, p_BytesPerSecond] { host->SetRateLimit(p_BytesPerSecond); },
        Qt::QueuedConnection);
}

void HostSession::Interrupt()
{
    QMetaObject::invokeMethod(
        Host, [host = Host] { host->Interrupt(); }, Qt::QueuedConnection);
}

} // namespace Varnholt::Host
