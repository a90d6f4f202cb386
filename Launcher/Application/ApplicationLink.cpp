#include "Launcher/Application/ApplicationLink.hpp"

#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/ApplicationAsyncHttpDownloader.hpp"

#include <QCoreApplication>
#include <QMetaObject>
#include <QMutexLocker>

#include <utility>

namespace Varnholt::Launcher {

namespace {

void RunOnMainThread(std::function<void()> const& p_Closure)
{
    if (QCoreApplication::instance() != nullptr)
        QMetaObject::invokeMethod(QCoreApplication::instance(), p_Closure, Qt::QueuedConnection);
}

} // namespace

ApplicationLink::ApplicationLink(Application& p_Application)
    : Target(&p_Application)
{
}

ApplicationLink::~ApplicationLink() = default;

void ApplicationLink::Post(std::function<void(Application&)> p_Closure,
                           std::function<void()> p_Otherwise)
{
    QMutexLocker const lock(&TargetMutex);
    if (Target == nullptr)
        return RunOnMainThread(p_Otherwise);
    quint64 const number = ++LastNumber;
    Waiting[number] = {std::move(p_Closure), std::move(p_Otherwise)};
    // The application, which the call is bound to, keeps this link.
    QMetaObject::invokeMethod(
        Target, [this, number] { Run(number); }, Qt::QueuedConnection);
}

void ApplicationLink::Run(quint64 p_Number)
{
    QMutexLocker lock(&TargetMutex);
    auto const posted = Waiting.find(p_Number);
    if (posted == Waiting.end())
        return;
    auto const closure = std::move(posted->second.Closure);
    Waiting.erase(posted);
    Application& target = *Target;
    lock.unlock();
    closure(target);
}

void ApplicationLink::Relay(void (Application::*p_Slot)(HTTP_DownloadFileRequest*),
                            HTTP_DownloadFileRequest* p_Request)
{
    QMutexLocker const lock(&TargetMutex);
    if (Target != nullptr)
        (Target->*p_Slot)(p_Request);
}

ApplicationAsyncHttpDownloader* ApplicationLink::NewDownloader()
{
    ++Downloads;
    return Next ? Next.release() : new ApplicationAsyncHttpDownloader;
}

void ApplicationLink::PrepareNext()
{
    if (Next || Downloads == 0)
        return;
    Next = std::make_unique<ApplicationAsyncHttpDownloader>();
    Next->Prepare();
}

void ApplicationLink::Retire()
{
    if (--Downloads == 0)
        Next.reset();
}

void ApplicationLink::Sever()
{
    Next.reset();
    QMutexLocker const lock(&TargetMutex);
    Target = nullptr;
    for (auto const& row : Waiting)
        RunOnMainThread(row.second.Otherwise);
    Waiting.clear();
}

} // namespace Varnholt::Launcher
