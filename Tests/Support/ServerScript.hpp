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
    /// Uses the next answer up. Rules of "*" serve every path that has none of its own left.
    Answer NextAnswer(QString const& p_Path);

    /// Answers of the path's own rule that were used.
    int ScriptedAnswers(QString const& p_Path) const;

    void OpenGate(QString const& p_Path, int p_Times);
    /// Passes the gate of a path when it is open; a pass uses up one opening.
    bool PassGate(QString const& p_Path);

    void Record(RecordedRequest p_Request);
    std::vector<RecordedRequest> Requests() const;
    void CountBodyBytes(QString const& p_Path, qint64 p_Bytes);
    qint64 BodyBytes(QString const& p_Path) const;

private:
    std::optional<Answer> TakeFrom(QString const& p_Path);

    mutable QMutex Mutex;
    QHash<QString, QByteArray> Files;
    QHash<QString, Rule> Rules;
    QHash<QString, int> Used; ///< answers by path
    QHash<QString, int> Gates;
    QHash<QString, qint64> SentBytes;
    std::vector<RecordedRequest> Seen;
};

} // namespace Varnholt::TestSupport
