#pragma once

#include "Publisher/Cli/SigningArguments.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish rollback`
class RollbackCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit RollbackCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    CLI::App* Command;
    std::string Output;
    std::string Build;
    std::string AppId = "pelmora_app";
    bool Dev = false;
    bool Quick = false;
    SigningArguments Signing;
    bool Json = false;
};

} // namespace Varnholt::Publisher
