#include "Host/Core/SizeSurvey.hpp"

#include "Launcher/Helper/Paths.hpp"

#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <algorithm>

namespace Varnholt::Host {

namespace {

constexpr int c_MostUnanswered = 6;

} // namespace

SizeSurvey::SizeSurvey(std::vector<FileFinding> p_Findings, Servers p_Servers, QString p_Folder)
    : Files(std::move(p_Findings))
    , From(std::move(p_Servers))
    , Folder(std::move(p_Folder))
{
}

void SizeSurvey::Begin()
{
    constexpr int c_Parallel = 6;

    if (Files.empty()) {
        QMetaObject::invokeMethod(this, &SizeSurvey::Finished, Qt::QueuedConnection);
        return;
    }
    for (int i = 0; i < c_Parallel; ++i)
        AskNext();
}

void SizeSurvey::AskNext()
{
    constexpr int c_TimeoutMilliseconds = 30'000;

    if (Next >= Files.size())
        return;
    std::size_t const index = Next++;
    FileFinding const& file = Files[index];
    QNetworkRequest request(
        QUrl((file.IsDefaultServerOnly ? From.Default : From.Mirror) + file.Location));
    request.setTransferTimeout(c_TimeoutMilliseconds);
    QNetworkReply* const reply = Manager.head(request);
    connect(reply, &QNetworkReply::finished, this, [this, index, reply] {
        OnAnswer(index, *reply);
        reply->deleteLater();
    });
}

void SizeSurvey::OnAnswer(std::size_t p_Index, QNetworkReply& p_Reply)
{
    FileFinding& file = Files[p_Index];
    bool known = false;
    qint64 const size = p_Reply.header(QNetworkRequest::ContentLengthHeader).toLongLong(&known);
    bool const answered = p_Reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    Unanswered = answered ? 0 : Unanswered + 1;
    if (p_Reply.error() == QNetworkReply::NoError && known) {
        qint64 const there =
            QFileInfo(Launcher::Helper::Paths::PartFile(Folder + file.Path)).size();
        file.Bytes = std::max<qint64>(0, size - there);
    }
    ++Answers;
    // A server that is silent for a while is not asked for the rest.
    if (Unanswered == c_MostUnanswered || Answers == Files.size())
        Q_EMIT Finished();
    else if (Unanswered < c_MostUnanswered)
        AskNext();
}

} // namespace Varnholt::Host
