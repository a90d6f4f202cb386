#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

#include <optional>

namespace Varnholt::Host {

/// How a game that was started has ended.
struct GameEnd {
    qint64 ProcessId = 0;
    std::optional<int> ExitStatus; ///< none when a signal has ended it, or nobody knows
    int Signal = 0;                ///< that has ended it; 0: none
    QDateTime Time;                ///< when that was seen, UTC

    /// "exit status 3" or "signal 9, Killed"; empty without an error.
    QString ErrorText() const;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::GameEnd)
