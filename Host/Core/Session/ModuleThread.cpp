#include "Host/Core/Session/ModuleThread.hpp"

#include <QCoreApplication>
#include <QDir>

#include <atomic>

namespace Varnholt::Host {

namespace {

std::atomic<int> g_Left{0};

} // namespace

ModuleThread::ModuleThread(HostOptions const& p_Options)
    : FormerFolder(QDir::currentPath())
    , Settings(p_Options.SettingsFile.isEmpty() ? HostOptions::DefaultSettingsFile()
                                                : p_Options.SettingsFile)
    , Object(new ModuleHost(p_Options, Settings))
{
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    setObjectName(QStringLiteral("module"));
    Object->moveToThread(this);
    connect(Object, &ModuleHost::Closed, this, &QThread::quit, Qt::DirectConnection);
}

ModuleThread::~ModuleThread()
{
    delete Object;
    QDir::setCurrent(FormerFolder);
}

void ModuleThread::Post(std::function<void(ModuleHost&)> p_What)
{
    QMetaObject::invokeMethod(
        Object, [host = Object, what = std::move(p_What)] { what(*host); }, Qt::QueuedConnection);
}

void ModuleThread::LetGo(int p_Milliseconds)
{
    if (wait(static_cast<unsigned long>(p_Milliseconds))) {
        delete this;
        return;
    }
    ++g_Left;
    connect(this, &QThread::finished, [] { --g_Left; });
    connect(this, &QThread::finished, this, &QObject::deleteLater);
    if (isFinished()) // in between
        deleteLater();
}

bool ModuleThread::IsAnyLeft()
{
    return g_Left > 0;
}

} // namespace Varnholt::Host
