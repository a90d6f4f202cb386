#include "Tests/Support/ServerScript.hpp"

#include <QMutexLocker>

#include <algorithm>

namespace Varnholt::TestSupport {

void ServerScript::Serve(QString const& p_Path, QByteArray const& p_Bytes)
{
    QMutexLocker const lock(&Mutex);
    Files[p_Path] = p_Bytes;
}

void ServerScript::Remove(QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    Files.remove(p_Path);
}

void ServerScript::Append(QString const& p_Path, Answer const& p_Answer)
{
    QMutexLocker const lock(&Mutex);
    Rules[p_Path].Answers.push_back(p_Answer);
}

void ServerScript::SetForever(QString const& p_Path, Answer const& p_Answer)
{
    QMutexLocker const lock(&Mutex);
    Rules[p_Path].Forever = p_Answer;
}

void ServerScript::ClearRule(QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    Rules.remove(p_Path);
}

std::optional<QByteArray> ServerScript::File(QString const& p_Path) const
{
    QMutexLocker const lock(&Mutex);
    auto const found = Files.constFind(p_Path);
    if (found == Files.constEnd())
        return {};
    return *found;
}

std::optional<Answer> ServerScript::TakeFrom(QString const& p_Path)
{
    auto const rule = Rules.find(p_Path);
    if (rule == Rules.end() || (rule->Answers.empty() && !rule->Forever))
        return {};
    ++Used[p_Path];
    if (rule->Answers.empty())
        return rule->Forever;
    Answer const answer = rule->Answers.front();
    rule->Answers.pop_front();
    return answer;
}

Answer ServerScript::NextAnswer(QByteArray const& p_Method, QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    QString const method = QString::fromLatin1(p_Method) + QLatin1Char(' ');
    for (QString const& path : {p_Path, QStringLiteral("*")})
        for (QString const& rule : {method + path, path})
            if (auto answer = TakeFrom(rule))
                return *answer;
    return Answer::Normal();
}

int ServerScript::ScriptedAnswers(QString const& p_Path) const
{
    QMutexLocker const lock(&Mutex);
    return Used.value(p_Path);
}

void ServerScript::OpenGate(QString const& p_Path, int p_Times)
{
    QMutexLocker const lock(&Mutex);
    Gates[p_Path] += p_Times;
}

bool ServerScript::PassGate(QString const& p_Path)
{
    QMutexLocker const lock(&Mutex);
    int& openings = Gates[p_Path];
    if (openings == 0)
        return false;
    --openings;
    return true;
}

void ServerScript::Record(RecordedRequest p_Request)
{
    constexpr int c_MostOfAPath = 3'000;
    constexpr qint64 c_WithinMilliseconds = 10'000;

    QMutexLocker const lock(&Mutex);
    p_Request.Number = static_cast<int>(Seen.size());
    // A client that asks without a pause would do so until somebody ends the test.
    Burst& burst = Bursts[p_Request.Path];
    if (p_Request.Milliseconds - burst.Begin > c_WithinMilliseconds)
        burst = {p_Request.Milliseconds, 0};
    if (++burst.Requests > c_MostOfAPath)
        qFatal("%s is asked for without end", qPrintable(p_Request.Path));
    Seen.push_back(std::move(p_Request));
}

std::vector<RecordedRequest> ServerScript::Requests() const
{
    QMutexLocker const lock(&Mutex);
    return Seen;
}

void ServerScript::BeginAnswer(QByteArray const& p_Method)
{
    QMutexLocker const lock(&Mutex);
    Concurrency& answers = UnderWay[p_Method];
    answers.Most = std::max(answers.Most, ++answers.Now);
}

void ServerScript::EndAnswer(QByteArray const& p_Method)
{
    QMutexLocker const lock(&Mutex);
    --UnderWay[p_Method].Now;
}

int ServerScript::AnswersNow(QByteArray const& p_Method) const
{
    QMutexLocker const lock(&Mutex);
    return UnderWay.value(p_Method).Now;
}

int ServerScript::MostAnswers(QByteArray const& p_Method) const
{
    QMutexLocker const lock(&Mutex);
    return UnderWay.value(p_Method).Most;
}

void ServerScript::CountBodyBytes(QString const& p_Path, qint64 p_Bytes)
{
    QMutexLocker const lock(&Mutex);
    SentBytes[p_Path] += p_Bytes;
}

qint64 ServerScript::BodyBytes(QString const& p_Path) const
{
    QMutexLocker const lock(&Mutex);
    return SentBytes.value(p_Path);
}

} // namespace Varnholt::TestSupport
