#include "Host/Core/MirrorCheck.hpp"

#include "Host/Core/FetchNote.hpp"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace Varnholt::Host {

namespace {

constexpr int c_PartialContent = 206;

QNetworkRequest RequestFor(QString const& p_Url)
{
    constexpr int c_TimeoutMilliseconds = 15'000;

    QNetworkRequest request((QUrl(p_Url)));
    request.setTransferTimeout(c_TimeoutMilliseconds);
    return request;
}

int StatusOf(QNetworkReply const& p_Reply)
{
    return p_Reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

FetchNote NoteOf(QNetworkReply const& p_Reply)
{
    FetchNote note;
    note.Url = p_Reply.url().toString();
    note.Error = p_Reply.error();
    note.Status = StatusOf(p_Reply);
    note.TimedOut = p_Reply.error() == QNetworkReply::OperationCanceledError;
    return note;
}

} // namespace

MirrorCheck::MirrorCheck(Question p_Question)
    : Asked(std::move(p_Question))
    , Addresses(Asked.DefaultServer)
{
    for (QString const& host : Asked.Hosts)
        Addresses += QStringLiteral("http://%1/").arg(host);
}

void MirrorCheck::Begin()
{
    AskNext();
}

void MirrorCheck::AskNext()
{
    if (Found.size() == static_cast<std::size_t>(Addresses.size())) {
        Q_EMIT Finished();
        return;
    }
    QString const address = Addresses[static_cast<int>(Found.size())];
    Found.push_back({});
    Found.back().Host = QUrl(address).authority();
    Clock.start();
    QNetworkReply* const reply = Manager.get(RequestFor(address + Asked.ManifestPath));
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        OnManifest(*reply);
        reply->deleteLater();
    });
}

void MirrorCheck::OnManifest(QNetworkReply& p_Reply)
{
    MirrorReport& report = Found.back();
    FetchNote const note = NoteOf(p_Reply);
    report.IsReachable = note.Status != 0;
    if (!note.IsSuccess()) {
        report.Cause = note.Cause();
        return AskNext();
    }
    report.Milliseconds = Clock.elapsed();
    QByteArray const manifest = p_Reply.readAll();
    if (Found.size() == 1)
        Expected = manifest;
    report.HasSameBuild = !Expected.isEmpty() && manifest == Expected;
    if (!report.HasSameBuild)
        report.Cause = QStringLiteral("its manifest is not the default server's");
    if (Asked.FilePath.isEmpty()) {
        report.GivesRanges = true; // nothing to resume
        return AskNext();
    }
    QString const address = Addresses[static_cast<int>(Found.size()) - 1];
    QNetworkRequest request = RequestFor(address + Asked.FilePath);
    request.setRawHeader("Range", "bytes=0-0");
    QNetworkReply* const reply = Manager.get(request);
    // The status tells; of a server that ignores ranges the whole file need not come.
    connect(reply, &QNetworkReply::metaDataChanged, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        OnPiece(*reply);
        reply->deleteLater();
    });
}

void MirrorCheck::OnPiece(QNetworkReply& p_Reply)
{
    MirrorReport& report = Found.back();
    report.GivesRanges = StatusOf(p_Reply) == c_PartialContent;
    if (!report.GivesRanges && report.Cause.isEmpty())
        report.Cause = QStringLiteral("it answers a range with status %1").arg(StatusOf(p_Reply));
    AskNext();
}

} // namespace Varnholt::Host
