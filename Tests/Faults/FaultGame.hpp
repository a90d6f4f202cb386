#pragma once

#include "Tests/Faults/FaultReport.hpp"
#include "Tests/Faults/Pulse.hpp"
#include "Tests/Faults/Referee.hpp"
#include "Tests/Host/SessionGame.hpp"

#include <QMap>

#include <memory>

namespace Varnholt::TestSupport {

/// A small game of every kind of file and a host of this process that is to bring it in spite of
/// what happens, under the eyes of a referee.
class FaultGame : public SessionGame {
public:
    /// Base files of several sizes, both languages, streamed files.
    FaultGame();
    ~FaultGame();

    static QString const c_First;  ///< the first file that is fetched
    static QString const c_Middle; ///< the longest
    static QString const c_Last;   ///< the last one, streamed

    /// Begins the session; the content must be complete. \return false when it does not open
    [[nodiscard]] bool Begin();
    /// Ends the session; the referee takes a last look.
    void Quit();
    /// Runs once under the eyes of the referee; a run that says "done" must have brought all.
    /// \param p_Meanwhile called when the run has been started
    /// \return how it ended
    QString RunWatched(Host::RunRequest const& p_Request,
                       std::function<void()> const& p_Meanwhile = {});
    /// The plain runs: an install into the folder, an update.
    QString InstallWatched();
    QString UpdateWatched();
    /// Updates until a run says "done", a few times at most. \return runs it took, 0: none did
    int UpdateUntilDone();

    /// Calls it a promise not kept when the latest run has not ended so. \param p_Words that its
    /// sentence holds
    void Expect(QString const& p_End, QString const& p_Expected, QString const& p_Words = {});
    /// Adds a promise that was not kept.
    void Accuse(QString const& p_Sentence) { Broken += p_Sentence; }

    Referee& Eyes() { return *Watcher; }
    /// What must not be and was; also once the session is over.
    QStringList Faults() const;
    qint64 LongestSilence() const;

private:
    std::unique_ptr<Referee> Watcher;
    std::unique_ptr<Pulse> Heart;
    qint64 Silence = 0;
    QStringList Broken; ///< promises
};

/// Collects what many games under the same fault came to.
class FaultTally {
public:
    /// \param p_Where names the game in a sentence about it
    /// \param p_Outcome in a few words; games with the same one are counted together
    void Add(QString const& p_Where, int p_Injected, QString const& p_Outcome,
             FaultGame const& p_Game);
    void Add(QString const& p_Where, int p_Injected, QString const& p_Outcome,
             QStringList const& p_Faults, qint64 p_Silence = FaultReport::c_NotMeasured);
    FaultReport Report() const;

private:
    FaultReport Sum;
    QMap<QString, int> Outcomes;
};

} // namespace Varnholt::TestSupport
