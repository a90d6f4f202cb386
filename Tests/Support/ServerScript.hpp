#pragma once

#include "Tests/Support/Answer.hpp"
#include "Tests/Support/RecordedRequest.hpp"

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QString>

#include <deque>
#include <optional>
#include <vector>

namespace Varnholt::TestSupport {

/// What a scripted server serves, is told to do and has seen: shared by the test's thread and the
/// server's, each member function taking the lock.
class ServerScript {
public:
    struct Rule {
        std::deque<Answer> Answers;
        std::optional<Answer> Forever;
    };

    void Serve(QString const& p_Path, QByteArray const& p_Bytes);
    void Remove(QString const& p_Path);
    void Append(QString const& p_Path, Answer const& p_Answer);
    void SetForever(QString const& p_Path, Answer const& p_Answer);
    void ClearRule(QString const& p_Path);

    std::optional<QByteArray> File(QString const& p_Path) const;
    /// Uses the next answer up. A rule may be for one method only, "HEAD /a", and comes before that
    /// for all. Rules of "*", and of "HEAD *", serve every path that has none of its own left.
    Answer NextAnswer(QByteArray const& p_Method, QString const& p_Path);

    /// Answers of a rule that were used.
    int ScriptedAnswers(QString const& p_Path) const;

    void OpenGate(QString const& p_Path, int p_Times);
    /// Passes the gate of a path when it is open; a pass uses up one opening.
    bool PassGate(QString const& p_Path);

    void Record(RecordedRequest p_Request);
    std::vector<RecordedRequest> Requests() const;
    void BeginAnswer(QByteArray const& p_Method);
    void EndAnswer(QByteArray const& p_Method);
    int AnswersNow(QByteArray const& p_Method) const;
    int MostAnswers(QByteArray const& p_Method) const;
    void CountBodyBytes(QString const& p_Path, qint64 p_Bytes);
    qint64 BodyBytes(QString const& p_Path) const;

private:
    struct Concurrency {
        int Now = 0;
        int Most = 0;
    };

    struct Burst {
        qint64 Begin = 0;
        int Requests = 0;
    };

    std::optional<Answer> TakeFrom(QString const& p_Path);

    mutable QMutex Mutex;
    QHash<QString, QByteArray> Files;
    QHash<QString, Rule> Rules;
    QHash<QString, int> Used; ///< answers by path
    QHash<QString, int> Gates;
    QHash<QString, qint64> SentBytes;
    QHash<QByteArray, Concurrency> UnderWay; ///< answers by method
    std::vector<RecordedRequest> Seen;
    QHash<QString, Burst> Bursts; ///< by path
};

} // namespace Varnholt::TestSupport
