#include "Tests/Gateway/GatewayBench.hpp"

#include "Tests/Support/SampleContent.hpp"

#include <QtEndian>

namespace Varnholt::TestSupport {

using namespace std::chrono_literals;

GatewayBench::GatewayBench(int p_Mirrors)
{
    for (int i = 0; i < p_Mirrors; ++i)
        Mirrors.push_back(std::make_unique<ScriptedServer>());
    QStringList hosts;
    for (auto const& mirror : Mirrors)
        hosts += mirror->Host();
    Server->Serve("/cdns.info", hosts.join(' ').toLatin1());
    Server->Serve("/game/version.json", "{\"build\":\"build_1\"}");
    Options.ContentServer = Server->BaseUrl().toStdString();
    Options.ConnectTimeout = 10s;
    Options.StallTime = 30s;
    Options.RetryPause = 20ms;
    Options.RetryFor = 60s;
    Options.CopyDelay = 300ms;
}

void GatewayBench::Serve(QString const& p_Path, QByteArray const& p_Bytes)
{
    for (ScriptedServer* const server : Servers())
        server->Serve('/' + p_Path, p_Bytes);
}

void GatewayBench::ScriptAll(QString const& p_Rule, Answer const& p_Answer, int p_Times)
{
    for (ScriptedServer* const server : Servers())
        server->Script(p_Rule).Then(p_Answer, p_Times);
}

void GatewayBench::ScriptMirrorsForEver(QString const& p_Rule, Answer const& p_Answer)
{
    for (auto const& mirror : Mirrors)
        mirror->Script(p_Rule).Always(p_Answer);
}

void GatewayBench::ScriptForEver(QString const& p_Rule, Answer const& p_Answer)
{
    ScriptMirrorsForEver(p_Rule, p_Answer);
    Server->Script(p_Rule).Always(p_Answer);
}

void GatewayBench::Open(Source p_Source, Documents const& p_Copies)
{
    Door = Gateway::Gateway::Create(Options);
    Door->BeginRun(p_Source, p_Copies);
    FetchHosts();
}

DoorReply GatewayBench::FetchHosts()
{
    DoorReply const reply = Document("cdns.info");
    if (reply.Status == 200)
        MirrorUrl = "http://" + reply.Body.trimmed() + '/';
    return reply;
}

QByteArray GatewayBench::DocumentUrl(QByteArray const& p_Path) const
{
    return QByteArray::fromStdString(Door->BaseUrl()) + "d/" + p_Path;
}

QByteArray GatewayBench::ContentUrl(QByteArray const& p_Path) const
{
    return MirrorUrl + p_Path;
}

DoorReply GatewayBench::Document(QByteArray const& p_Path) const
{
    return AskDoor({DocumentUrl(p_Path)});
}

DoorReply GatewayBench::Content(QByteArray const& p_Path, QByteArray const& p_Range) const
{
    return AskDoor({ContentUrl(p_Path), p_Range});
}

FetchProblem GatewayBench::ProblemOf(QByteArray const& p_Path) const
{
    return Door->ProblemOf(p_Path.toStdString()).value_or(FetchProblem{});
}

std::vector<ScriptedServer*> GatewayBench::Servers() const
{
    std::vector<ScriptedServer*> servers{Server.get()};
    for (auto const& mirror : Mirrors)
        servers.push_back(mirror.get());
    return servers;
}

std::vector<RecordedRequest> GatewayBench::Requests(QString const& p_Path,
                                                    QByteArray const& p_Method) const
{
    std::vector<RecordedRequest> requests;
    for (ScriptedServer const* const server : Servers())
        for (RecordedRequest const& request : server->Requests('/' + p_Path))
            if (request.Method == p_Method)
                requests.push_back(request);
    return requests;
}

qint64 GatewayBench::SentBytes(QString const& p_Path) const
{
    qint64 bytes = 0;
    for (ScriptedServer const* const server : Servers())
        bytes += server->BodyBytes('/' + p_Path);
    return bytes;
}

int GatewayBench::AnswersNow(QByteArray const& p_Method) const
{
    int answers = 0;
    for (ScriptedServer const* const server : Servers())
        answers += server->AnswersNow(p_Method);
    return answers;
}

QByteArray LargeBytes(int p_Size)
{
    constexpr int c_Block = 4096;

    QByteArray const block = SampleContent::Bytes(c_Block);
    QByteArray bytes = block.repeated(p_Size / c_Block + 1).left(p_Size);
    for (int start = 0; start + int(sizeof(quint32)) <= p_Size; start += c_Block)
        qToBigEndian(quint32(start), bytes.data() + start);
    return bytes;
}

} // namespace Varnholt::TestSupport
