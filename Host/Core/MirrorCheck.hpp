#pragma once

#include "Host/Core/MirrorReport.hpp"

#include <QByteArray>
#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QObject>
#include <QStringList>

#include <vector>

namespace Varnholt::Host {

/// Asks each mirror of a build for its manifest and for a piece of a file, one after another, the
/// default server first. Lives on one thread.
class MirrorCheck : public QObject {
    Q_OBJECT

public:
    /// Paths are those of an address behind its host.
    struct Question {
        QString DefaultServer; ///< address, ends in "/"
        QStringList Hosts;
        QString ManifestPath;
        QString FilePath; ///< of a file that is not empty; empty when there is none
    };

    explicit MirrorCheck(Question p_Question);

    /// Answered by `Finished`, whatever the servers do.
    void Begin();
    /// In the order of the question; the default server is the first.
    std::vector<MirrorReport> const& Reports() const { return Found; }

Q_SIGNALS:
    void Finished();

private:
    void AskNext();
    void OnManifest(QNetworkReply& p_Reply);
    void OnPiece(QNetworkReply& p_Reply);

    QNetworkAccessManager Manager;
    Question Asked;
    QStringList Addresses; ///< with scheme, end in "/"
    QElapsedTimer Clock;
    QByteArray Expected; ///< the default server's manifest
    std::vector<MirrorReport> Found;
};

} // namespace Varnholt::Host
