#include "Tests/Downloader/DownloadBench.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QElapsedTimer>
#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::TestSupport {

using Launcher::Application;
using Launcher::HTTP_DownloadFileRequest;

DownloadBench::DownloadBench(TestHost::Worker p_Worker)
    : Path(Folder.path() + "/file.part")
    , App(std::make_unique<PlainApplication>())
    , Host(std::make_unique<TestHost>(*App, p_Worker))
{
    Clock.start();
    auto const record = [this](auto p_Signal, DownloadEvent::Kind p_What) {
        QObject::connect(
            App.get(), p_Signal, App.get(),
            [this, p_What](HTTP_DownloadFileRequest* p_Request) { Record(p_What, *p_Request); },
            Qt::DirectConnection);
    };
    record(&Application::OnHTTPDownloadProgressUpdate, DownloadEvent::Kind::Update);
    record(&Application::OnHTTPDownloadRestarted, DownloadEvent::Kind::Restarted);
    record(&Application::OnHTTPDownloadProgressComplete, DownloadEvent::Kind::Complete);
    App->OnDownloadRetired = [this](HTTP_DownloadFileRequest*) { ++Retired; };
}

DownloadBench::~DownloadBench()
{
    Host.reset();
    App.reset();
}

DownloadEvent DownloadBench::Look(HTTP_DownloadFileRequest const& p_Request)
{
    DownloadEvent event;
    event.Thread = QThread::currentThread();
    event.CurrentBytes = p_Request.CurrentBytes;
    event.BytesOnDisk = p_Request.BytesOnDisk;
    event.RateSampleBytes = p_Request.RateSampleBytes;
    event.BytesPerSecond = p_Request.BytesPerSecond;
    event.ContentLength = p_Request.ContentLength;
    event.Percent = p_Request.Percent;
    event.Aborted = p_Request.Aborted;
    event.Resume = p_Request.Resume;
    event.Restarting = p_Request.Restarting;
    event.Continuable = p_Request.Continuable;
    event.Digest = p_Request.Digest;
    return event;
}

void DownloadBench::Record(DownloadEvent::Kind p_What, HTTP_DownloadFileRequest& p_Request)
{
    DownloadEvent event = Look(p_Request);
    event.What = p_What;
    event.Milliseconds = Clock.elapsed();
    if (p_What != DownloadEvent::Kind::Update)
        event.Content = File();
    {
        QMutexLocker const lock(&Mutex);
        Recorded.push_back(event);
    }
    if (OnEvent)
        OnEvent(event);
}

QByteArray DownloadBench::File() const
{
    return ReadFile(Path);
}

bool DownloadBench::WriteFile(QByteArray const& p_Bytes) const
{
    return TestSupport::WriteFile(Path, p_Bytes);
}

HTTP_DownloadFileRequest* DownloadBench::Start(bool p_Resume, QString const& p_Url)
{
    ++Started;
    return App->DownloadFile(p_Url.isEmpty() ? Server.Url(c_Path) : p_Url, Path, p_Resume);
}

bool DownloadBench::RunToEnd()
{
    return Host->RunUntil([this] { return Retired == Started; }) && Host->RunUntilIdle();
}

bool DownloadBench::Run(bool p_Resume, QString const& p_Url)
{
    Start(p_Resume, p_Url);
    return RunToEnd();
}

bool DownloadBench::WaitBusy(std::function<bool()> const& p_Condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!p_Condition()) {
        if (clock.elapsed() > TestHost::c_Timeout)
            return false;
        QThread::msleep(1);
    }
    return true;
}

std::vector<DownloadEvent> DownloadBench::Events() const
{
    QMutexLocker const lock(&Mutex);
    return Recorded;
}

std::vector<DownloadEvent> DownloadBench::Events(DownloadEvent::Kind p_What) const
{
    std::vector<DownloadEvent> events = Events();
    events.erase(std::remove_if(events.begin(), events.end(),
                                [=](auto const& p_Event) { return p_Event.What != p_What; }),
                 events.end());
    return events;
}

int DownloadBench::Count(DownloadEvent::Kind p_What) const
{
    return static_cast<int>(Events(p_What).size());
}

DownloadEvent DownloadBench::Completion() const
{
    auto const completions = Events(DownloadEvent::Kind::Complete);
    return completions.size() == 1 ? completions[0] : DownloadEvent{};
}

QStringList DownloadBench::Ranges() const
{
    QStringList ranges;
    for (RecordedRequest const& request : Server.Requests(c_Path))
        ranges += request.Has("Range") ? QString::fromLatin1(request.Header("Range")) : "-";
    return ranges;
}

} // namespace Varnholt::TestSupport
