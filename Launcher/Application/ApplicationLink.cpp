#include "Launcher/Application/ApplicationLink.hpp"

#include "Launcher/Application/Application.hpp"

#include <QMetaObject>
#include <QMutexLocker>

namespace Varnholt::Launcher {

bool ApplicationLink::Post(std::function<void(Application&)> p_Closure)
{
    QMutexLocker const lock(&TargetMutex);
    Application* const target = Target;
    if (target == nullptr)
        return false;
    QMetaObject::invokeMethod(
        target, [target, closure = std::move(p_Closure)] { closure(*target); },
        Qt::QueuedConnection);
    return true;
}

void ApplicationLink::Sever()
{
    QMutexLocker const lock(&TargetMutex);
    Target = nullptr;
}

} // namespace Varnholt::Launcher
