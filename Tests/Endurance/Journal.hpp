#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// What was done, step by step; the last steps explain a failure. Any thread.
class Journal {
public:
    void Add(QString const& p_Step)
    {
        QMutexLocker const lock(&Mutex);
        Steps += QStringLiteral("%1 %2").arg(++Count).arg(p_Step);
        if (Steps.size() > c_Kept)
            Steps.removeFirst();
    }

    QString Text() const
    {
        QMutexLocker const lock(&Mutex);
        return Steps.join(QLatin1Char('\n'));
    }

private:
    static constexpr int c_Kept = 150;

    mutable QMutex Mutex;
    QStringList Steps;
    int Count = 0;
};

} // namespace Varnholt::TestSupport
