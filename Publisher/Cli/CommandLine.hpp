#pragma once

#include "Publisher/Cli/Command.hpp"

#include <CLI/CLI.hpp>

#include <memory>
#include <vector>

namespace Varnholt::Publisher {

/// The program varnholt-publish.
class CommandLine {
public:
    CommandLine();

    /// Every command and option with its help.
    CLI::App const& Model() const { return Program; }

    /// Runs the command that the arguments name and reports failures on standard error.
    /// \param p_Arguments as main() gets them, UTF-8
    /// \return exit status: 0 done, 1 failed, 2 called in a wrong way, 128 + signal when
    /// interrupted
    int Run(int p_Count, char const* const* p_Arguments);

private:
    int RunCommand(int p_Count, char const* const* p_Arguments);

    CLI::App Program{"Publishes a game so that any web server with byte ranges can serve it",
                     "varnholt-publish"};
    std::vector<std::unique_ptr<Command>> Commands;
};

} // namespace Varnholt::Publisher
