#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QStringList>

#include <optional>

#include <sys/types.h>

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

/// A program that runs on its own: in a session of its own, without input, with no file of this
/// process but its output, and with its environment and current folder. It outlives the object and
/// the process. For one thread at a time.
class GameProcess {
public:
    GameProcess() = default;
    /// Lets the program run on; a thread waits for its end, so that it leaves no zombie.
    ~GameProcess();
    GameProcess(GameProcess const&) = delete;
    GameProcess& operator=(GameProcess const&) = delete;

    /// Called once. \param p_Output descriptor of its output and error output
    /// \return 0, or the system's number of the error, when the program was not even begun
    int Start(QString const& p_Program, QStringList const& p_Arguments, int p_Output);
    qint64 Id() const { return Process; }
    /// Nothing while it runs.
    std::optional<GameEnd> Ending();

private:
    pid_t Process = 0;
    std::optional<GameEnd> Ended;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::GameEnd)
