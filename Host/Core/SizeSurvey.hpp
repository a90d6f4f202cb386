#pragma once

#include "Host/Core/FileFinding.hpp"

#include <QNetworkAccessManager>
#include <QObject>

#include <vector>

namespace Varnholt::Host {

/// Asks servers for the sizes of files, without their content. Lives on one thread.
class SizeSurvey : public QObject {
    Q_OBJECT

public:
    /// Addresses end in "/" and are followed by a file's location.
    struct Servers {
        QString Default;
        QString Mirror;
    };

    /// \param p_Folder where the beginnings of files lie that need not be fetched again
    SizeSurvey(std::vector<FileFinding> p_Findings, Servers p_Servers, QString p_Folder);

    /// Answered by `Finished`, whatever the servers do.
    void Begin();

    /// With sizes after `Finished`; unknown where a server did not tell.
    std::vector<FileFinding> const& Findings() const { return Files; }
    quint32 Answered() const { return Answers; }

Q_SIGNALS:
    void Finished();

private:
    void AskNext();
    void OnAnswer(std::size_t p_Index, QNetworkReply& p_Reply);

    QNetworkAccessManager Manager;
    std::vector<FileFinding> Files;
    Servers From;
    QString Folder;
    std::size_t Next = 0;
    quint32 Answers = 0;
    int Unanswered = 0; ///< in a row
};

} // namespace Varnholt::Host
