#pragma once

#include "Tests/Host/HostGame.hpp"

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

namespace Varnholt::TestSupport {

/// How a program ended and what it said.
struct Outcome {
    int Status = -1; ///< -1: it crashed or was killed
    QString Out;
    QString Err;
};

/// One line on standard error: the program's name, what failed, what to do about it.
inline bool IsOneSentence(QString const& p_Err)
{
    return p_Err.startsWith(QLatin1String("varnholt-host: ")) &&
           p_Err.endsWith(QLatin1String(".\n")) && p_Err.count(QLatin1Char('\n')) == 1 &&
           p_Err.contains(QLatin1String("; "));
}

/// The built varnholt-host at work on a game, with its settings and its server.
///
/// \code
/// QCOMPARE(HostProcess(game, {"install", game.Folder}).Finish().Status, 0);
/// \endcode
class HostProcess {
public:
    /// Starts it. \param p_Arguments command and options; settings and server are named before them
    HostProcess(HostGame const& p_Game, QStringList const& p_Arguments);
    /// Starts it with options of settings and server of the test's own, and some variables more.
    HostProcess(HostGame const& p_Game, QStringList const& p_Options,
                QStringList const& p_Arguments, QMap<QString, QString> const& p_Variables = {});
    /// Starts it with some variables more in its environment.
    HostProcess(HostGame const& p_Game, QStringList const& p_Arguments,
                QMap<QString, QString> const& p_Variables);
    /// Kills it when it still runs.
    ~HostProcess();
    HostProcess(HostProcess const&) = delete;
    HostProcess& operator=(HostProcess const&) = delete;

    /// Gives it this input and waits for its end; fails the whole program when there is none.
    Outcome Finish(QByteArray const& p_Input = {});
    /// Waits until standard error, all that was said so far, holds the text.
    [[nodiscard]] bool WaitForErr(QString const& p_Text);
    /// The same of standard output.
    [[nodiscard]] bool WaitForOut(QString const& p_Text);
    /// Waits while it runs. \return false when the condition never held or the program ended
    [[nodiscard]] bool WaitUntil(std::function<bool()> const& p_Condition);
    void Signal(int p_Signal) const;
    qint64 ProcessId() const { return Process.processId(); }

    static QString Program() { return QString::fromUtf8(VARNHOLT_HOST_PROGRAM); }
    /// Options that name settings and server of a game.
    static QStringList Options(HostGame const& p_Game);
    /// An environment in which nothing of the user's is found.
    static QProcessEnvironment Environment(HostGame const& p_Game);

private:
    void Start(HostGame const& p_Game, QStringList const& p_Arguments,
               QMap<QString, QString> const& p_Variables = {});
    void Take();

    QProcess Process;
    QByteArray Out;
    QByteArray Err;
};

} // namespace Varnholt::TestSupport
