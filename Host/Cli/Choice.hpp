#pragma once

#include "Host/Core/HostOptions.hpp"
#include "Host/Core/RunRequest.hpp"

#include <QString>

namespace Varnholt::Host {

/// When colours and the like are used.
enum class Color { Auto, Always, Never };

/// What the user has asked for on the command line.
struct Choice {
    enum class Command {
        Info,
        Status,
        CurrentLocale,
        Run, ///< `Request` says which
    };

    Command Chosen = Command::Status;
    RunRequest Request;
    HostOptions Options;
    Color Colors = Color::Auto;
    bool Quiet = false;
    bool Verbose = false;
};

} // namespace Varnholt::Host
