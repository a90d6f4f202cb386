#pragma once

#include "Tests/Host/HostGame.hpp"
#include "Tests/Host/SessionGame.hpp"

namespace Varnholt::TestSupport {

/// A session that knows a game and watches it for long.
class WatchingSession : public SessionGame {
public:
    static constexpr int c_Long = 1'000'000;

    explicit WatchingSession(HostGame const& p_Game, int p_Milliseconds = c_Long)
    {
        Options.SettingsFile = p_Game.SettingsFile;
        Options.ContentUrl = p_Game.Server.BaseUrl();
        Options.WatchMilliseconds = p_Milliseconds;
        if (!Open())
            qFatal("the module cannot be loaded");
    }
};

} // namespace Varnholt::TestSupport
