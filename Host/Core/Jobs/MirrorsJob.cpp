#include "Host/Core/Jobs/JobTable.hpp"
#include "Host/Core/Network/FetchFailure.hpp"

#include <QCoreApplication>
#include <QUrl>

#include <algorithm>
#include <string>

namespace Varnholt::Host {

namespace {

/// With the port, when it is not the usual one.
QString HostOf(std::string const& p_Server)
{
    return QUrl(QString::fromStdString(p_Server)).authority();
}

/// Finds out which servers of content are in order: asks each for its manifest and for a piece of a
/// file, one after another, the default server first.
class MirrorsJob : public Job {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::MirrorsJob)

public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override { return std::nullopt; }

    void OnBuildKnown() override
    {
        Settle([this] { AskAll(); });
    }

    RunPhase Phase() const override
    {
        return Servers.empty() ? RunPhase::Connecting : RunPhase::AskingMirrors;
    }

private:
    void AskAll()
    {
        // An empty file has no piece to ask for; the manifest tells of one by its digest only.
        QString const empty = QStringLiteral("D41D8CD98F00B204E9800998ECF8427E");
        auto const& files = Context.Module.Manifest.Files;
        auto const file = std::find_if(files.begin(), files.end(), [&](auto const& p_Entry) {
            return p_Entry.Md5 != empty &&
                   !p_Entry.Has(Launcher::ApplicationManifestFileEntry::DefaultServerOnly);
        });
        if (file != files.end())
            File = Context.Door.PathOf(file->Location);
        for (std::string const& server : Context.Door->Servers())
            if (std::none_of(Servers.begin(), Servers.end(), [&](std::string const& p_Known) {
                    return HostOf(p_Known) == HostOf(server);
                }))
                Servers.push_back(server);
        AskNext();
    }

    void AskNext()
    {
        if (Found.size() == Servers.size())
            return Judge();
        Gateway::Question question;
        question.Server = Servers[Found.size()];
        question.Path = Context.Door.PathOf(ManifestFile(Context.Module.RemoteBuild));
        Found.push_back({});
        Found.back().Host = HostOf(question.Server);
        Ask(question, [this](Gateway::Reply const& p_Reply) { OnManifest(p_Reply); });
    }

    void OnManifest(Gateway::Reply const& p_Reply)
    {
        MirrorReport& report = Found.back();
        report.IsReachable = p_Reply.HttpStatus != 0;
        if (p_Reply.Problem) {
            report.Cause = CauseText(*p_Reply.Problem);
            return AskNext();
        }
        report.Milliseconds = p_Reply.Took.count();
        if (Found.size() == 1)
            Expected = p_Reply.Body;
        report.HasSameBuild = !Expected.empty() && p_Reply.Body == Expected;
        if (!report.HasSameBuild)
            report.Cause = tr("its manifest is not the default server's");
        if (File.empty()) {
            report.GivesRanges = true; // nothing to resume
            return AskNext();
        }
        Gateway::Question question;
        question.Server = Servers[Found.size() - 1];
        question.Path = File;
        question.Range = "0-0";
        question.MostBytes = 1; // of a server that ignores ranges the whole file need not come
        Ask(question, [this](Gateway::Reply const& p_Piece) { OnPiece(p_Piece); });
    }

    void OnPiece(Gateway::Reply const& p_Reply)
    {
        constexpr int c_PartialContent = 206;

        MirrorReport& report = Found.back();
        report.GivesRanges = p_Reply.HttpStatus == c_PartialContent;
        if (!report.GivesRanges && report.Cause.isEmpty())
            report.Cause = p_Reply.HttpStatus == 0 && p_Reply.Problem
                               ? CauseText(*p_Reply.Problem)
                               : tr("it answers a range with status %1").arg(p_Reply.HttpStatus);
        AskNext();
    }

    void Judge()
    {
        Result.Mirrors = Found;
        QStringList wrong;
        for (MirrorReport const& report : Found)
            if (!report.IsInOrder())
                wrong += report.Host;
        if (wrong.isEmpty())
            return Finish();
        Fail({FailureKind::MirrorsWrong, tr("%1 of %2").arg(wrong.size()).arg(Found.size()),
              wrong.join(QStringLiteral(", "))});
    }

    std::string File;                 ///< that a piece is asked of; empty: there is none
    std::vector<std::string> Servers; ///< base addresses, one a host; none until the asking begins
    std::string Expected;             ///< the default server's manifest
    std::vector<MirrorReport> Found;  ///< of the servers that were asked, the latest one last
};

} // namespace

JobMaker const MakeMirrorsJob = MakeJob<MirrorsJob>;

} // namespace Varnholt::Host
