#include "Host/Core/NetworkJournal.hpp"

#include <QNetworkAccessManager>
#include <QUrl>

namespace Varnholt::Host {

NetworkJournal::NetworkJournal(QNetworkAccessManager& p_Manager, QString p_AppId)
    : AppId(std::move(p_AppId))
{
    connect(&p_Manager, &QNetworkAccessManager::finished, this,
            [this](QNetworkReply* p_Reply) { OnFinished(*p_Reply); });
}

void NetworkJournal::OnFinished(QNetworkReply& p_Reply)
{
    if (Ignored.remove(&p_Reply))
        return;
    FetchNote note;
    note.Url = p_Reply.request().url().toString(QUrl::PrettyDecoded);
    note.Error = p_Reply.error();
    note.Status = p_Reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    note.TimedOut = TimedOut.remove(&p_Reply);
    Add(note);
    if (note.IsSuccess())
        Sizes[LocationIn(note.Url)] =
            p_Reply.header(QNetworkRequest::ContentLengthHeader).toULongLong();
}

void NetworkJournal::NoteDownloadError(QString const& p_Url, int p_Error)
{
    FetchNote note;
    note.Url = p_Url;
    note.Error = p_Error;
    Add(note);
    // Refusing a file is as bad as not being there: the next one comes from another mirror.
    Dead.insert(QUrl(p_Url).authority());
}

void NetworkJournal::NoteTimeout(QString const& p_Url)
{
    FetchNote note;
    note.Url = p_Url;
    note.TimedOut = true;
    Add(note);
}

void NetworkJournal::ExpectTimeout(QNetworkReply const& p_Reply)
{
    TimedOut.insert(&p_Reply);
}

void NetworkJournal::Ignore(QNetworkReply const& p_Reply)
{
    Ignored.insert(&p_Reply);
}

void NetworkJournal::Add(FetchNote const& p_Note)
{
    LatestNote = p_Note;
    if (p_Note.IsSuccess()) {
        Failures.remove(LocationIn(p_Note.Url));
        return;
    }
    LatestFailedNote = p_Note;
    Failures[LocationIn(p_Note.Url)] = p_Note;
    if (p_Note.IsUnreachable())
        Dead.insert(QUrl(p_Note.Url).authority());
}

void NetworkJournal::Clear()
{
    Failures.clear();
    Sizes.clear();
    LatestNote.reset();
    LatestFailedNote.reset();
}

std::optional<FetchNote> NetworkJournal::FailureOf(QString const& p_Suffix) const
{
    for (FetchNote const& note : Failures)
        if (note.Url.endsWith(p_Suffix))
            return note;
    return std::nullopt;
}

std::optional<FetchNote> NetworkJournal::FailureOfFile(QString const& p_Location) const
{
    auto const found = Failures.constFind(p_Location);
    return found == Failures.constEnd() ? std::nullopt : std::make_optional(*found);
}

quint64 NetworkJournal::SizeOf(QString const& p_Location) const
{
    return Sizes.value(p_Location);
}

QString NetworkJournal::LocationIn(QString const& p_Url) const
{
    QString const before = QLatin1Char('/') + AppId + QLatin1Char('/');
    int const at = p_Url.indexOf(before);
    return at < 0 ? p_Url : p_Url.mid(at + before.size());
}

} // namespace Varnholt::Host
