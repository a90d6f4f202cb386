#include "Tests/Host/SessionGame.hpp"

#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QFileInfo>
#include <QtTest>

#include <algorithm>

namespace Varnholt::TestSupport {

SessionGame::SessionGame()
{
    constexpr int c_ShortMilliseconds = 5;

    Options.ModuleFile = LoadedPlugin::Path();
    Options.SettingsFile = SettingsFile;
    Options.ContentUrl = Server.BaseUrl();
    Options.RetryPauseMilliseconds = c_ShortMilliseconds;
    Options.Flush = [](QString const&) {}; // everybody's files would be waited for
}

SessionGame::~SessionGame()
{
    Close();
}

bool SessionGame::Open()
{
    Close();
    Info.reset();
    OpenFailure.reset();
    Current = std::make_unique<Host::HostSession>(Options);
    Listen();
    Current->Open();
    if (!WaitUntil([this] { return Info || OpenFailure; }))
        qFatal("the session does not open");
    return Info.has_value();
}

Host::RunRequest SessionGame::QuickCheck()
{
    Host::RunRequest request;
    request.Kind = RequestType::Check;
    request.Quick = true;
    return request;
}

void SessionGame::Close()
{
    if (!Current)
        return;
    bool isClosed = false;
    QObject::connect(Current.get(), &Host::HostSession::Closed, Current.get(),
                     [&] { isClosed = true; });
    Current->Close();
    if (!WaitUntil([&] { return isClosed; }))
        qFatal("the session does not close");
    Current.reset();
}

void SessionGame::Listen()
{
    using Host::HostSession;

    QObject* const context = Current.get();
    QObject::connect(Current.get(), &HostSession::Opened, context,
                     [this](Host::ModuleInfo const& p_Info) { Info = p_Info; });
    QObject::connect(Current.get(), &HostSession::OpenFailed, context,
                     [this](Host::Failure const& p_Failure) { OpenFailure = p_Failure; });
    QObject::connect(Current.get(), &HostSession::StatusRead, context,
                     [this](Host::InstallStatus const& p_Status) { Statuses.push_back(p_Status); });
    QObject::connect(
        Current.get(), &HostSession::Progressed, context,
        [this](Host::RunSnapshot const& p_Snapshot) { Snapshots.push_back(p_Snapshot); });
    QObject::connect(Current.get(), &HostSession::Noticed, context,
                     [this](Host::Notice const& p_Notice) {
                         Notices += p_Notice.Text();
                         NoticeValues.push_back(p_Notice);
                     });
    QObject::connect(Current.get(), &HostSession::Ended, context,
                     [this](quint64 p_Id, Host::RunResult const& p_Result) {
                         EndedIds.push_back(p_Id);
                         Results.push_back(p_Result);
                     });
}

void SessionGame::Start(RequestType p_Kind, QString const& p_Argument)
{
    Host::RunRequest request;
    request.Kind = p_Kind;
    request.Argument = p_Argument;
    Start(request);
}

void SessionGame::Start(Host::RunRequest const& p_Request)
{
    Forget();
    Current->Start(p_Request);
}

QString SessionGame::Run(RequestType p_Kind, QString const& p_Argument)
{
    Start(p_Kind, p_Argument);
    return End();
}

QString SessionGame::Run(Host::RunRequest const& p_Request)
{
    Start(p_Request);
    return End();
}

QString SessionGame::End()
{
    if (!WaitUntil([this] { return !Results.empty(); }))
        return QStringLiteral("still ") +
               (Snapshots.empty() ? QStringLiteral("silent") : PhaseText(Snapshots.back().Phase));
    return Result().Problem ? Result().Problem->Identifier() : QStringLiteral("done");
}

QString SessionGame::InstallOver()
{
    Host::RunRequest request;
    request.Kind = RequestType::Install;
    request.Argument = Folder;
    request.Confirmed = true;
    return Run(request);
}

Host::InstallStatus SessionGame::Status()
{
    std::size_t const before = Statuses.size();
    Current->ReadStatus();
    if (!WaitUntil([&] { return Statuses.size() > before; }))
        qFatal("the session does not tell its status");
    return Statuses.back();
}

bool SessionGame::WaitUntil(std::function<bool()> const& p_Condition)
{
    return QTest::qWaitFor(p_Condition, TestHost::c_Timeout);
}

bool SessionGame::WaitForPhase(Host::RunPhase p_Phase)
{
    return WaitUntil([&] { return !Snapshots.empty() && Snapshots.back().Phase == p_Phase; });
}

bool SessionGame::WaitForBytes(quint64 p_Bytes)
{
    return WaitUntil([&] { return !Snapshots.empty() && Snapshots.back().BytesDone == p_Bytes; });
}

bool SessionGame::WaitForPart(QString const& p_File, qint64 p_Bytes)
{
    QString const part = Path(p_File) + QLatin1String(".part");
    return WaitUntil([&] { return QFileInfo(part).size() == p_Bytes; });
}

QString SessionGame::Sentence() const
{
    return !Results.empty() && Result().Problem ? Result().Problem->Sentence() : QString();
}

std::vector<Host::RunPhase> SessionGame::Phases() const
{
    std::vector<Host::RunPhase> phases;
    for (Host::RunSnapshot const& snapshot : Snapshots)
        if (phases.empty() || phases.back() != snapshot.Phase)
            phases.push_back(snapshot.Phase);
    return phases;
}

bool SessionGame::HasWaitedFor(QString const& p_Cause) const
{
    return std::any_of(Snapshots.begin(), Snapshots.end(), [&](auto const& p_Snapshot) {
        return p_Snapshot.Wait && p_Snapshot.Wait->Cause == p_Cause;
    });
}

void SessionGame::Forget()
{
    Snapshots.clear();
    Results.clear();
    EndedIds.clear();
    Notices.clear();
    NoticeValues.clear();
}

} // namespace Varnholt::TestSupport
