#pragma once

#include <QMutex>
#include <QtGlobal>

#include <functional>
#include <map>

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

    /// Runs p_Closure on the application's thread, after everything posted to it before. When the
    /// application goes before that, p_Otherwise is run in its place on the program's main thread.
    /// Any thread.
    void Post(std::function<void(Application&)> p_Closure, std::function<void()> p_Otherwise);

    /// Called by the application's destructor.
    void Sever();

private:
    struct Posted {
        std::function<void(Application&)> Closure;
        std::function<void()> Otherwise;
    };

    void Run(quint64 p_Number);

    QMutex TargetMutex;
    Application* Target;
    std::map<quint64, Posted> Waiting; ///< in the order of their posting
    quint64 LastNumber = 0;
};

} // namespace Varnholt::Launcher
