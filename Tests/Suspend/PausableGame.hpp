#pragma once

#include "Tests/Runs/Game.hpp"

#include <QString>

namespace Varnholt::TestSupport {

/// A game whose transfers stop where a test wants to pause them.
///
/// \code
/// PausableGame game;
/// game.Add({"a.bin", bytes});
/// game.Stall("a.bin", 1000);
/// game.Begin();
/// QVERIFY(game.RunUntilPart("a.bin", 1000));
/// game.App.SuspendDownload();
/// QVERIFY(game.RunUntilHandled());
/// \endcode
class PausableGame : public Game {
public:
    using Game::Game;

    /// Adds answers for a file's transfers behind the one for the question for its size.
    ScriptedServer::PathScript ScriptTransfer(QString const& p_File);
    /// Makes a file's first transfer fall silent after so many bytes.
    void Stall(QString const& p_File, qint64 p_Bytes);
    /// Lets whatever waits for a file's gate go on, and all that comes.
    void OpenGate(QString const& p_File);

    /// Until the transfer that was stopped has been handled.
    [[nodiscard]] bool RunUntilHandled();
    /// Until the transfer in flight has ended, without running an event.
    [[nodiscard]] bool WaitUntilEnded() const;
};

} // namespace Varnholt::TestSupport
