#pragma once

#include "Tests/Faults/FaultGame.hpp"

#include <functional>
#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// One fault at one place of a game: a run under it, which may fail but loses nothing that was
/// there, and a run without it that completes the game.
struct FaultTrial {
    QString Where;
    RequestType Kind = RequestType::Update;
    /// Called when the run has been started: waits for its moment and strikes. None: the fault is
    /// there from the beginning. \return how often it struck
    std::function<int(FaultGame&)> Strike;
    std::function<void(FaultGame&)> Undo; ///< called when the run has ended
    QString End;                          ///< how the run must end; empty: anyhow
    QString Words;                        ///< that its sentence must hold then
    QStringList NotKept;                  ///< files that the fault itself changes or takes away
    /// Bytes that a file may hold beside those of the build.
    std::vector<std::pair<QString, QByteArray>> Allowed;

    /// The content and the folder must be complete but for the fault.
    void Run(FaultGame& p_Game, FaultTally& p_Tally) const;

    /// An installed game with lists, a configuration of the player's and some files missing, so
    /// that an update writes all there is to write.
    static void PutOld(FaultGame& p_Game);
    /// Of a run, for a place.
    static QString NameOf(RequestType p_Kind);
};

} // namespace Varnholt::TestSupport
