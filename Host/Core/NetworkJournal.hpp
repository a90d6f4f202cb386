#pragma once

#include "Host/Core/FetchNote.hpp"

#include <QHash>
#include <QNetworkReply>
#include <QObject>
#include <QSet>
#include <QString>

#include <optional>

namespace Varnholt::Host {

/// Remembers how fetches, size queries and downloads ended, since the module itself says little
/// about causes. Module thread.
class NetworkJournal : public QObject {
    Q_OBJECT

public:
    /// \param p_AppId the path component before a file's location
    NetworkJournal(QNetworkAccessManager& p_Manager, QString p_AppId);

    /// A file download has met an error that the module goes on after.
    void NoteDownloadError(QString const& p_Url, int p_Error);
    /// A mirror, by host and port, has given something else than the file that was asked for.
    void NoteWrongContent(QString const& p_Mirror) { Dead.insert(p_Mirror); }
    /// A file download has been stopped since nothing arrived for too long.
    void NoteTimeout(QString const& p_Url);
    /// The reply is about to be aborted for that reason; it is noted so when it ends.
    void ExpectTimeout(QNetworkReply const& p_Reply);
    /// The reply is about to be aborted since nobody wants it any more.
    void Ignore(QNetworkReply const& p_Reply);
    /// Forgets failures and sizes, not the dead mirrors.
    void Clear();

    /// The latest fetch that ended, of whatever kind; none before the first.
    std::optional<FetchNote> const& Latest() const { return LatestNote; }
    /// The latest size query or download that failed.
    std::optional<FetchNote> const& LatestFailure() const { return LatestFailedNote; }
    /// How the latest attempt at an address ending in p_Suffix failed; none when it did not.
    std::optional<FetchNote> FailureOf(QString const& p_Suffix) const;
    /// How the latest attempt at a file, by its location, failed.
    std::optional<FetchNote> FailureOfFile(QString const& p_Location) const;
    /// The size that a server gave for a file, by its location; 0 when unknown.
    quint64 SizeOf(QString const& p_Location) const;
    /// Hosts, with port, that could not be reached or have refused or spoiled a file.
    QSet<QString> const& DeadMirrors() const { return Dead; }

private:
    void OnFinished(QNetworkReply& p_Reply);
    void Add(FetchNote const& p_Note);
    QString LocationIn(QString const& p_Url) const;

    QString AppId;
    QSet<QNetworkReply const*> TimedOut; ///< being aborted
    QSet<QNetworkReply const*> Ignored;  ///< being aborted
    QHash<QString, FetchNote> Failures;  ///< by location
    QHash<QString, quint64> Sizes;       ///< by location
    QSet<QString> Dead;
    std::optional<FetchNote> LatestNote;
    std::optional<FetchNote> LatestFailedNote;
};

} // namespace Varnholt::Host
