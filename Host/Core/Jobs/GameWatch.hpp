#pragma once

#include "Host/Core/Jobs/GameProcess.hpp"

#include <QObject>

#include <memory>
#include <vector>

namespace Varnholt::Host {

/// Sees the games that were started end. They outlive it. Module thread.
class GameWatch : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Takes a game over that runs.
    void Take(std::unique_ptr<GameProcess> p_Game);
    /// Called in each turn.
    void Look();

Q_SIGNALS:
    void Started(qint64 p_ProcessId);
    void Ended(GameEnd p_End);

private:
    std::vector<std::unique_ptr<GameProcess>> Running;
};

} // namespace Varnholt::Host
