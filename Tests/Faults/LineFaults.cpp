#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Arrived = 5'000;
/// For an outage that shall not be survived.
constexpr int c_ShortRetryFor = 1'000;

QString const c_Done = QStringLiteral("done");

/// An update will fetch p_File.
void Prepare(FaultGame& p_Game, RequestType p_Kind, QString const& p_File)
{
    if (p_Kind != RequestType::Update)
        return;
    FaultTrial::PutOld(p_Game);
    QFile::remove(p_Game.Path(p_File));
}

/// Whether the run has been told to wait for as long as five minutes are to a plain host, whose
/// pauses are a hundred times longer.
bool WaitsForFiveMinutes(FaultGame& p_Game)
{
    constexpr int c_PausesOfFiveMinutes = 5 * 60 * 1'000 / 500;

    qint64 const seconds = c_PausesOfFiveMinutes * p_Game.Options.RetryPauseMilliseconds / 1'000;
    return p_Game.WaitUntil([&] {
        return !p_Game.Snapshots.empty() && p_Game.Snapshots.back().Wait &&
               p_Game.Snapshots.back().Wait->Silent >= seconds;
    });
}

/// What p_Server is asked for goes away while a file, or its size, arrives, and comes back: when it
/// has been waited for, or when the run has ended.
struct Outage {
    RequestType Kind;
    QString File;
    bool IsOfSize = false;
    bool IsSurvived = true;
    QString End = {}; ///< of a run that does not survive it
    QString Words = {};

    void Try(FaultGame& p_Game, ScriptedServer& p_Server, QString const& p_Path,
             FaultTally& p_Tally) const;
    QString Where() const
    {
        return QStringLiteral("%1, %2, %3")
            .arg(IsOfSize ? QStringLiteral("size") : File, FaultTrial::NameOf(Kind),
                 IsSurvived ? QStringLiteral("survived") : QStringLiteral("given up"));
    }
};

void Outage::Try(FaultGame& p_Game, ScriptedServer& p_Server, QString const& p_Path,
                 FaultTally& p_Tally) const
{
    p_Server.Script((IsOfSize ? "HEAD " : "GET ") + p_Path)
        .Then(IsOfSize ? Answer::SilentBeforeHeaders() : Answer::SilentAfter(c_Arrived));
    if (!IsSurvived)
        p_Game.Options.RetryForMilliseconds = c_ShortRetryFor;
    FaultTrial trial;
    trial.Where = Where();
    trial.Kind = Kind;
    trial.End = IsSurvived ? c_Done : End;
    trial.Words = IsSurvived ? QString() : Words;
    trial.Strike = [&](FaultGame&) {
        bool const hasBegun = IsOfSize
                                  ? p_Game.WaitUntil([&] { return p_Server.Count(p_Path) > 0; })
                                  : p_Game.WaitForPart(File, c_Arrived);
        p_Server.Stop();
        if (!IsSurvived)
            return hasBegun ? 1 : 0;
        bool const hasWaited = WaitsForFiveMinutes(p_Game);
        p_Server.Restart();
        return hasBegun && hasWaited ? 1 : 0;
    };
    trial.Undo = [&](FaultGame&) {
        if (!IsSurvived)
            p_Server.Restart();
    };
    trial.Run(p_Game, p_Tally);
}

std::vector<Outage> Outages(QString const& p_End, QString const& p_Words)
{
    std::vector<Outage> outages;
    for (RequestType const kind : {RequestType::Install, RequestType::Update}) {
        for (QString const& file : {FaultGame::c_First, FaultGame::c_Middle, FaultGame::c_Last})
            for (bool const isSurvived : {true, false})
                outages.push_back({kind, file, false, isSurvived, p_End, p_Words});
        outages.push_back({kind, FaultGame::c_Middle, true});
    }
    return outages;
}

FaultReport ServerGone()
{
    FaultTally tally;
    for (Outage const& outage :
         Outages(QStringLiteral("server-unreachable"), QStringLiteral("(connection refused)"))) {
        FaultGame game;
        game.Publish();
        Prepare(game, outage.Kind, outage.File);
        outage.Try(game, game.Server, game.Content.ServerPath(outage.File), tally);
    }
    return tally.Report();
}

/// Lets a proxy have all that a game's server has.
void PublishBehind(ScriptedServer& p_Proxy, FaultGame& p_Game)
{
    SampleContent const& content = p_Game.Content;
    auto const serve = [&](QString const& p_Path, QByteArray const& p_Bytes) {
        p_Proxy.Serve(p_Game.Server.Url(p_Path), p_Bytes);
    };
    serve(content.VersionPath(), "{\"build\":\"" + content.Build.toUtf8() + "\"}");
    serve(content.ManifestPath(), content.ManifestBytes());
    serve(content.RealmListPath(), content.RealmList);
    serve(QStringLiteral("/cdns.info"), p_Game.Server.Host().toUtf8());
    for (SampleFile const& file : content.Files)
        serve(content.ServerPath(file.Path), file.Bytes);
}

QString ProxyWords(ScriptedServer const& p_Proxy)
{
    return QStringLiteral("the proxy %1 cannot be reached: connection refused").arg(p_Proxy.Host());
}

/// The proxy that is named is not there; then none is named.
void TryWithoutProxy(RequestType p_Kind, FaultTally& p_Tally)
{
    FaultGame game;
    game.Publish();
    Prepare(game, p_Kind, FaultGame::c_First);
    ScriptedServer proxy;
    proxy.Stop();
    game.Options.Proxy = proxy.BaseUrl();
    bool isLoaded = game.Begin();
    QString const end =
        p_Kind == RequestType::Install ? game.InstallWatched() : game.UpdateWatched();
    game.Expect(end, QStringLiteral("proxy-unreachable"), ProxyWords(proxy));
    if (!game.Server.Requests().empty())
        game.Accuse(QStringLiteral("the server was asked past the proxy"));
    game.Quit();
    game.Options.Proxy.clear();
    isLoaded = game.Begin() && isLoaded;
    if (!isLoaded)
        game.Accuse(QStringLiteral("the module does not load"));
    game.UpdateUntilDone();
    game.Quit();
    p_Tally.Add(QStringLiteral("from the beginning, ") + FaultTrial::NameOf(p_Kind), 1,
                end + QStringLiteral(", then complete"), game);
}

FaultReport ProxyDead()
{
    FaultTally tally;
    for (RequestType const kind : {RequestType::Install, RequestType::Update})
        TryWithoutProxy(kind, tally);
    ScriptedServer proxy;
    for (Outage const& outage : Outages(QStringLiteral("proxy-unreachable"), ProxyWords(proxy))) {
        FaultGame game;
        game.Publish();
        PublishBehind(proxy, game);
        Prepare(game, outage.Kind, outage.File);
        game.Options.Proxy = proxy.BaseUrl();
        outage.Try(game, proxy, game.Server.Url(game.Content.ServerPath(outage.File)), tally);
        if (!game.Server.Requests().empty())
            tally.Add(outage.Where(), 0, QStringLiteral("past the proxy"),
                      {QStringLiteral("the server was asked past the proxy")});
    }
    return tally.Report();
}

/// Bytes per second at which a file arrives, from its first byte on. \return 0 when it never does
double RateOf(FaultGame& p_Game, SampleFile const& p_File)
{
    Host::RunRequest request;
    request.Kind = RequestType::Install;
    request.Argument = p_Game.Folder;
    QElapsedTimer clock;
    double rate = 0;
    QString const end = p_Game.RunWatched(request, [&] {
        QString const path = p_Game.Path(p_File.Path);
        auto const arrived = [&] {
            return std::max(QFileInfo(path).size(), QFileInfo(path + ".part").size());
        };
        if (!p_Game.WaitUntil([&] { return arrived() > 0; }))
            return;
        clock.start();
        qint64 const before = arrived();
        if (p_Game.WaitUntil([&] { return arrived() == p_File.Bytes.size(); }))
            rate = static_cast<double>(p_File.Bytes.size() - before) * 1'000 /
                   static_cast<double>(clock.elapsed());
    });
    p_Game.Expect(end, c_Done);
    return rate;
}

void TryLimit(QString const& p_Where, Answer const& p_Answer, FaultTally& p_Tally)
{
    constexpr int c_Limit = 1'000'000;
    constexpr int c_LargeBytes = 6'000'000;
    constexpr int c_Times = 8;
    constexpr double c_Tolerance = 0.05;
    SampleFile const large{QStringLiteral("Data/large.MPQ"), SampleContent::Bytes(c_LargeBytes, 8)};

    FaultGame game;
    auto& files = game.Content.Files;
    // The others take nothing worth mentioning of what may come.
    auto const isLarge = [](SampleFile const& p_File) {
        constexpr int c_Small = 10'000;
        return p_File.Bytes.size() > c_Small;
    };
    files.erase(std::remove_if(files.begin(), files.end(), isLarge), files.end());
    files.insert(files.begin(), large);
    game.Publish();
    game.Options.BytesPerSecond = c_Limit;
    QString const path = game.Content.ServerPath(large.Path);
    game.Server.Script("GET " + path).Then(p_Answer, c_Times);
    if (!game.Begin())
        game.Accuse(QStringLiteral("the module does not load"));
    double const rate = RateOf(game, large);
    if (rate < c_Limit * (1 - c_Tolerance) || rate > c_Limit * (1 + c_Tolerance))
        game.Accuse(QStringLiteral("it came with %1 bytes per second, not %2")
                        .arg(rate, 0, 'f', 0)
                        .arg(c_Limit));
    game.UpdateUntilDone();
    game.Quit();
    p_Tally.Add(p_Where, game.Server.ScriptedAnswers("GET " + path),
                QStringLiteral("complete at once"), game);
}

FaultReport RateLimitHeld()
{
    constexpr int c_SomeBytes = 200'000;

    FaultTally tally;
    TryLimit(QStringLiteral("truncated"), Answer::Truncated(c_SomeBytes), tally);
    TryLimit(QStringLiteral("reset"), Answer::Reset(c_SomeBytes), tally);
    TryLimit(QStringLiteral("closed"), Answer::ClosedBeforeHeaders(), tally);
    TryLimit(QStringLiteral("503"), Answer::Status(503), tally);
    TryLimit(QStringLiteral("without ranges"), Answer::IgnoringRange(), tally);
    return tally.Report();
}

} // namespace

std::vector<FaultRow> LineFaults()
{
    return {{QStringLiteral("server gone for five minutes"), ServerGone},
            {QStringLiteral("proxy dead"), ProxyDead},
            {QStringLiteral("rate limit held"), RateLimitHeld}};
}

} // namespace Varnholt::TestSupport
