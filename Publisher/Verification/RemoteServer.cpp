#include "Publisher/Verification/RemoteServer.hpp"

#include "Publisher/Failure.hpp"

#include <QUrl>

#include <httplib.h>

namespace Varnholt::Publisher {

namespace {

constexpr int c_ConnectSeconds = 10;
constexpr int c_SilenceSeconds = 30;

QByteArray HeaderOf(httplib::Response const& p_Response, char const* p_Name)
{
    return QByteArray::fromStdString(p_Response.get_header_value(p_Name));
}

RemoteAnswer AnswerOf(httplib::Response const& p_Response)
{
    RemoteAnswer answer;
    answer.Status = p_Response.status;
    bool isNumber = false;
    qint64 const length = HeaderOf(p_Response, "Content-Length").toLongLong(&isNumber);
    answer.Length = isNumber ? length : -1;
    answer.Range = HeaderOf(p_Response, "Content-Range");
    answer.Encoding = HeaderOf(p_Response, "Content-Encoding");
    return answer;
}

QString TextOf(httplib::Error p_Error)
{
    switch (p_Error) {
    case httplib::Error::Success:
        return {};
    case httplib::Error::Connection:
        return QStringLiteral("the server cannot be reached");
    case httplib::Error::Read:
        return QStringLiteral("the server does not answer, or ends the answer too early");
    default:
        return QStringLiteral("the server cannot be asked: ") +
               QString::fromStdString(httplib::to_string(p_Error));
    }
}

std::string OriginOf(QUrl const& p_Url)
{
    return p_Url.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment)
        .toString(QUrl::FullyEncoded)
        .toStdString();
}

} // namespace

QString RemoteAnswer::Problem(int p_Status) const
{
    if (Status == 0)
        return Error;
    if (Status != p_Status)
        return QStringLiteral("the server answers with status %1 instead of %2")
            .arg(Status)
            .arg(p_Status);
    return Error;
}

class RemoteServer::Implementation {
public:
    explicit Implementation(QUrl const& p_Url)
        : Client(OriginOf(p_Url))
        , Prefix(p_Url.path(QUrl::FullyEncoded).toStdString())
    {
        Client.set_connection_timeout(c_ConnectSeconds);
        Client.set_read_timeout(c_SilenceSeconds);
        Client.set_keep_alive(true);
        Client.set_decompress(false);
        Client.set_follow_location(false);
    }

    RemoteAnswer Get(QString const& p_Path, httplib::Headers const& p_Headers, Sink const& p_Sink);

    std::string PathOf(QString const& p_Path) const { return Prefix + p_Path.toStdString(); }

    httplib::Headers const Headers{{"Accept-Encoding", "gzip, deflate"}};
    httplib::Client Client;

private:
    std::string Prefix;
};

RemoteAnswer RemoteServer::Implementation::Get(QString const& p_Path,
                                               httplib::Headers const& p_Headers,
                                               Sink const& p_Sink)
{
    RemoteAnswer answer;
    httplib::Result const result = Client.Get(
        PathOf(p_Path), p_Headers,
        [&answer](httplib::Response const& p_Response) {
            answer = AnswerOf(p_Response);
            return true;
        },
        [&p_Sink](char const* p_Data, std::size_t p_Bytes) {
            p_Sink(p_Data, p_Bytes);
            return true;
        });
    answer.Error = TextOf(result.error());
    return answer;
}

RemoteServer::RemoteServer(QString const& p_BaseUrl)
{
    QUrl const url(p_BaseUrl, QUrl::StrictMode);
    bool const isWeb =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !isWeb || url.host().isEmpty() || url.hasQuery() || url.hasFragment()) {
        throw Failure(QStringLiteral("\"%1\" is no address of a server, such as "
                                     "http://content.example.net/")
                          .arg(p_BaseUrl),
                      Failure::c_Usage);
    }
    Details = std::make_unique<Implementation>(url);
}

RemoteServer::~RemoteServer() = default;

RemoteAnswer RemoteServer::Head(QString const& p_Path)
{
    httplib::Result const result = Details->Client.Head(Details->PathOf(p_Path), Details->Headers);
    RemoteAnswer answer = result ? AnswerOf(*result) : RemoteAnswer();
    answer.Error = TextOf(result.error());
    return answer;
}

RemoteAnswer RemoteServer::Get(QString const& p_Path, QByteArray const& p_Range, Sink const& p_Sink)
{
    httplib::Headers headers = Details->Headers;
    if (!p_Range.isEmpty())
        headers.emplace("Range", p_Range.toStdString());
    return Details->Get(p_Path, headers, p_Sink);
}

RemoteAnswer RemoteServer::Fetch(QString const& p_Path, QByteArray& p_Body)
{
    p_Body.clear();
    httplib::Headers const plain{{"Accept-Encoding", "identity"}};
    RemoteAnswer answer =
        Details->Get(p_Path, plain, [&p_Body](char const* p_Data, std::size_t p_Bytes) {
            p_Body.append(p_Data, static_cast<int>(p_Bytes));
        });
    if (!answer.Problem(200).isEmpty())
        p_Body.clear();
    return answer;
}

} // namespace Varnholt::Publisher
