#include "Publisher/Verification/ServerVerification.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Launcher/Helper/Paths.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Tree/PublishedBuild.hpp"
#include "Publisher/Tree/ServerTexts.hpp"
#include "Publisher/Verification/RemoteServer.hpp"
#include "Publisher/Verification/ServerFileCheck.hpp"

#include <QSet>

#include <atomic>
#include <map>
#include <mutex>
#include <vector>

namespace Varnholt::Publisher {

namespace {

constexpr int c_Connections = 4; ///< to one server
/// A server that leaves so many questions unanswered is asked no more.
constexpr int c_MostSilent = 5;

QString UrlOfHost(QString const& p_Host)
{
    return QStringLiteral("http://%1/").arg(p_Host);
}

class ServerVerification {
public:
    explicit ServerVerification(ServerVerificationOptions p_Options)
        : Asked(std::move(p_Options))
        , Check(Asked.Keys, Asked.AppId)
    {
        Asked.BaseUrl = Launcher::Helper::Paths::WithSlash(Asked.BaseUrl);
    }

    VerificationSummary Run()
    {
        RemoteServer server(Asked.BaseUrl);
        Summary.Servers += Asked.BaseUrl;
        ReadBuilds(server);
        QStringList const hosts = ReadHosts(server);
        if (Check.IsOn())
            CheckRealmList(server);
        Sizes.assign(Files.size(), -1);
        if (!Files.empty())
            CheckFiles(Asked.BaseUrl, true);
        for (QString const& host : hosts) {
            QString const url = UrlOfHost(host);
            if (Summary.Servers.contains(url))
                continue;
            Summary.Servers += url;
            if (ComparesManifests(url) && !Files.empty())
                CheckFiles(url, false);
        }
        return Summary;
    }

private:
    QString PathOf(QString const& p_Location) const
    {
        return Asked.AppId + QLatin1Char('/') + p_Location;
    }

    void ReadBuilds(RemoteServer& p_Server)
    {
        QStringList problems;
        for (QString const& name : ServerTexts::VersionFiles()) {
            QByteArray version;
            QString const url = Asked.BaseUrl + PathOf(name);
            QString const problem = p_Server.Fetch(PathOf(name), version).Problem(200);
            if (!problem.isEmpty()) {
                problems += url + QStringLiteral(": ") + problem;
                continue;
            }
            CheckSignature(p_Server, PathOf(name), version);
            QString const build = ServerTexts::BuildOf(version, url, Summary.Defects);
            if (!build.isEmpty() && !Summary.Builds.contains(build))
                ReadBuild(p_Server, build);
        }
        // A tree may serve one channel only.
        if (problems.size() == ServerTexts::VersionFiles().size())
            Summary.Defects += problems.first();
    }

    void ReadBuild(RemoteServer& p_Server, QString const& p_Build)
    {
        Summary.Builds += p_Build;
        QString const path = PathOf(QStringLiteral("builds/%1/info.json").arg(p_Build));
        QString const url = Asked.BaseUrl + path;
        QByteArray manifest;
        QString const problem = p_Server.Fetch(path, manifest).Problem(200);
        if (!problem.isEmpty()) {
            Summary.Defects += url + QStringLiteral(": ") + problem;
            return;
        }
        CheckSignature(p_Server, path, manifest);
        try {
            for (PublishedFile const& file : PublishedBuild::Parse(manifest, url).Files) {
                QString const content = file.Location + file.Md5;
                if (!Known.contains(content))
                    Files.push_back(file);
                Known.insert(content);
            }
            Manifests[p_Build] = manifest;
        } catch (Failure const& failure) {
            Summary.Defects += QString::fromUtf8(failure.what());
        }
    }

    QStringList ReadHosts(RemoteServer& p_Server)
    {
        QString const name = QStringLiteral("cdns.info");
        QByteArray list;
        QString const problem = p_Server.Fetch(name, list).Problem(200);
        if (problem.isEmpty()) {
            CheckSignature(p_Server, name, list);
            return ServerTexts::HostsOf(list, Asked.BaseUrl + name, Summary.Defects);
        }
        Summary.Defects += Asked.BaseUrl + name + QStringLiteral(": ") + problem;
        return {};
    }

    void CheckSignature(RemoteServer& p_Server, QString const& p_Path, QByteArray const& p_Content)
    {
        if (!Check.IsOn())
            return;
        QByteArray signature;
        p_Server.Fetch(DocumentCheck::SignatureOf(p_Path), signature);
        QString const problem = Check.ProblemOf(p_Path, p_Content, signature, Summary.Sequence);
        if (!problem.isNull())
            Summary.Defects += Asked.BaseUrl + p_Path + QStringLiteral(": ") + problem;
        ++Summary.Signatures;
    }

    void CheckRealmList(RemoteServer& p_Server)
    {
        QString const path = PathOf(QStringLiteral("realmlist.info"));
        QByteArray list;
        // Not every tree has one.
        if (p_Server.Fetch(path, list).Status == 200)
            CheckSignature(p_Server, path, list);
    }

    bool ComparesManifests(QString const& p_Server)
    {
        try {
            RemoteServer server(p_Server);
            for (auto const& [build, manifest] : Manifests) {
                QString const path = PathOf(QStringLiteral("builds/%1/info.json").arg(build));
                QByteArray bytes;
                RemoteAnswer const answer = server.Fetch(path, bytes);
                QString problem = answer.Problem(200);
                if (problem.isEmpty() && bytes != manifest)
                    problem = QStringLiteral("is not the manifest that the default server gives");
                if (!problem.isEmpty())
                    Summary.Defects += p_Server + path + QStringLiteral(": ") + problem;
                if (answer.Status == 0)
                    return false;
            }
        } catch (Failure const& failure) {
            Summary.Defects += QStringLiteral("cdns.info: ") + QString::fromUtf8(failure.what());
            return false;
        }
        return true;
    }

    void CheckFiles(QString const& p_Server, bool p_IsDefault)
    {
        std::vector<QStringList> problems(Files.size());
        std::atomic<std::size_t> next{0};
        Silent = 0;
        auto const work = [&](std::size_t) {
            RemoteServer server(p_Server);
            for (std::size_t i = next++; i < Files.size(); i = next++) {
                // Clients never ask mirrors for such a file.
                bool const isElsewhere =
                    !p_IsDefault &&
                    (Files[i].Flags & Launcher::ApplicationManifestFileEntry::DefaultServerOnly) !=
                        0;
                if (!isElsewhere)
                    CheckFile(server, p_Server, i, problems[i]);
            }
        };
        ParallelFor(c_Connections, work, c_Connections);
        for (QStringList const& sentences : problems)
            Summary.Defects += sentences;
        if (Silent >= c_MostSilent) {
            Summary.Defects +=
                p_Server + QStringLiteral(": does not answer any more, the rest of its "
                                          "files was not looked at");
        }
    }

    void CheckFile(RemoteServer& p_Server, QString const& p_Url, std::size_t p_Index,
                   QStringList& p_Problems)
    {
        using Depth = ServerFileCheck::Depth;
        {
            std::lock_guard const lock(Mutex);
            if (Silent >= c_MostSilent)
                return;
        }
        PublishedFile const& file = Files[p_Index];
        QString const path = PathOf(file.Location);
        bool const isRead = IsInSample(p_Index);
        ServerFileCheck check(p_Server, path, file);
        QString const problem = check.Run(isRead ? Depth::Content : Depth::Headers, Sizes[p_Index]);
        if (!problem.isNull())
            p_Problems += QStringLiteral("%1 (%2): %3").arg(p_Url + path, file.Path, problem);
        if (Sizes[p_Index] < 0)
            Sizes[p_Index] = check.Size();
        std::lock_guard const lock(Mutex);
        ++Summary.Files;
        Summary.FilesRead += isRead ? 1 : 0;
        Silent += check.IsAnswered() ? 0 : 1;
    }

    /// Evenly spread over all files.
    bool IsInSample(std::size_t p_Index) const
    {
        auto const sample = static_cast<std::size_t>(Asked.Sample);
        if (Asked.ReadsAll || sample >= Files.size())
            return true;
        return p_Index * sample / Files.size() != (p_Index + 1) * sample / Files.size();
    }

    ServerVerificationOptions Asked;
    DocumentCheck Check;
    VerificationSummary Summary;
    std::map<QString, QByteArray> Manifests; ///< by build, as the default server gives them
    std::vector<PublishedFile> Files;        ///< each content once
    QSet<QString> Known;                     ///< what is in `Files`
    std::vector<qint64> Sizes;               ///< of `Files`, as the default server gives them
    std::mutex Mutex;                        ///< of `Summary` while files are checked
    int Silent = 0;                          ///< questions without an answer, of one server
};

} // namespace

VerificationSummary VerifyServers(ServerVerificationOptions const& p_Options)
{
    return ServerVerification(p_Options).Run();
}

} // namespace Varnholt::Publisher
