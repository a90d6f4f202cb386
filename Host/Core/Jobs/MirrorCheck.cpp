#include "Host/Core/Jobs/MirrorCheck.hpp"

#include "Host/Core/Network/FetchFailure.hpp"

#include <QUrl>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// With the port, when it is not the usual one.
QString HostOf(std::string const& p_Server)
{
    return QUrl(QString::fromStdString(p_Server)).authority();
}

} // namespace

MirrorCheck::MirrorCheck(NetworkDoor& p_Door, std::string p_Manifest, std::string p_File)
    : Door(p_Door)
    , Manifest(std::move(p_Manifest))
    , File(std::move(p_File))
{
    for (std::string const& server : Door->Servers())
        if (std::none_of(Servers.begin(), Servers.end(), [&](std::string const& p_Known) {
                return HostOf(p_Known) == HostOf(server);
            }))
            Servers.push_back(server);
}

void MirrorCheck::Begin()
{
    AskNext();
}

void MirrorCheck::AskNext()
{
    if (Found.size() == Servers.size()) {
        Q_EMIT Finished();
        return;
    }
    Gateway::Question question;
    question.Server = Servers[Found.size()];
    question.Path = Manifest;
    Found.push_back({});
    Found.back().Host = HostOf(question.Server);
    Door.Ask(question, *this, [this](Gateway::Reply const& p_Reply) { OnManifest(p_Reply); });
}

void MirrorCheck::OnManifest(Gateway::Reply const& p_Reply)
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
    Door.Ask(question, *this, [this](Gateway::Reply const& p_Piece) { OnPiece(p_Piece); });
}

void MirrorCheck::OnPiece(Gateway::Reply const& p_Reply)
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

} // namespace Varnholt::Host
