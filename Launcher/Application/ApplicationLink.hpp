#pragma once

#include <QMutex>
#include <QtGlobal>

#include <functional>
#include <map>
#include <memory>

namespace Varnholt::Launcher {

class Application;
class ApplicationAsyncHttpDownloader;
struct HTTP_DownloadFileRequest;

/// What a download thread holds of its application: a way to post to the application's thread that
/// stays safe when the application is destroyed first.
class ApplicationLink {
public:
    explicit ApplicationLink(Application& p_Application);
    ~ApplicationLink();

    /// Runs p_Closure on the application's thread, after everything posted to it before. When the
    /// application goes before that, p_Otherwise is run in its place on the program's main thread.
    /// Any thread.
    void Post(std::function<void(Application&)> p_Closure, std::function<void()> p_Otherwise);

    /// Calls a relay slot of the application on this thread, as long as there is one: it does not
    /// go while it is called. Any thread but the application's.
    void Relay(void (Application::*p_Slot)(HTTP_DownloadFileRequest*),
               HTTP_DownloadFileRequest* p_Request);

    /// Called by the application's destructor; by that of the class derived from it when downloads
    /// may outlive the object.
    void Sever();

    // While files follow each other, the thread of the next one is made ready as the one before
    // pauses. The application's thread only.

    /// A downloader for a file that is begun now; its end is told of by `Retire`.
    ApplicationAsyncHttpDownloader* NewDownloader();
    void PrepareNext();
    void Retire();

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
    std::unique_ptr<ApplicationAsyncHttpDownloader> Next; ///< runs already, and waits for its file
    int Downloads = 0;                                    ///< begun and not retired
};

} // namespace Varnholt::Launcher
