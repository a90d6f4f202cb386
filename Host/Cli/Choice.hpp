#pragma once

#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Settings/HostOptions.hpp"

#include <QMap>
#include <QString>

namespace Varnholt::Host {

/// When colours and the like are used.
enum class Color { Auto, Always, Never };

/// An option's value and who gives it.
struct GivenOption {
    QString Text;
    QString Origin; ///< in words: "command line"
};

/// What the user has asked for on the command line.
struct Choice {
    enum class Command {
        Info,
        Status,
        CurrentLocale,
        Config, ///< `ConfigKey` and `ConfigValue`, null when not given
        Pause,
        Resume,
        Watch,
        Run, ///< `Request` says which
    };

    Command Chosen = Command::Status;
    RunRequest Request;
    HostOptions Options;
    QString ConfigKey;
    QString ConfigValue;
    bool ConfigList = false; ///< every option with its origin
    /// Options that can be kept, by name, as the command line or the environment gives them;
    /// `Options` holds none of them until the settings were looked at.
    QMap<QString, GivenOption> Given;
    QString LogFile; ///< absolute; empty: none
    Color Colors = Color::Auto;
    bool Remembers = false; ///< the password asked for is kept in the desktop's secret store
    bool Forgets = false;   ///< the password kept there is removed
    bool Waits = false;     ///< for the end of the game
    bool All = false;       ///< every module beside the one in use is shown too
    bool Json = false;
    bool Quiet = false;
    bool Verbose = false;
};

} // namespace Varnholt::Host
