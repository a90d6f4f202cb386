#pragma once

#include <QMutex>

#include <functional>

namespace Varnholt::Launcher {

class Application;

/// What a download thread holds of its application: a way to post to the application's thread that
/// stays safe when the application is destroyed first.
class ApplicationLink {
public:
    explicit ApplicationLink(Application& p_Application)
        : Target(&p_Application)
    {
    }

    /// Runs the closure on the application's thread, after everything posted to it before. Any
    /// thread. \return false when the application is gone: the closure will not run
    bool Post(std::function<void(Application&)> p_Closure);

    /// Called by the application's destructor.
    void Sever();

private:
    QMutex TargetMutex;
    Application* Target;
};

} // namespace Varnholt::Launcher
