#pragma once

#include "Publisher/Cli/AdoptCommand.hpp"
#include "Publisher/Cli/BuildCommand.hpp"
#include "Publisher/Cli/DiffCommand.hpp"
#include "Publisher/Cli/KeysCommand.hpp"
#include "Publisher/Cli/ListCommand.hpp"
#include "Publisher/Cli/PruneCommand.hpp"
#include "Publisher/Cli/RollbackCommand.hpp"
#include "Publisher/Cli/RulesCommand.hpp"
#include "Publisher/Cli/ServeCommand.hpp"
#include "Publisher/Cli/ServerListCommand.hpp"
#include "Publisher/Cli/SignCommand.hpp"
#include "Publisher/Cli/VerifyCommand.hpp"

#include <CLI/CLI.hpp>

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
    BuildCommand Build{Program};
    ServeCommand Serve{Program};
    DiffCommand Diff{Program};
    VerifyCommand Verify{Program};
    RulesCommand Rules{Program};
    ListCommand List{Program};
    RollbackCommand Rollback{Program};
    PruneCommand Prune{Program};
    ServerListCommand Hosts{Program, ServerListCommand::List::Hosts};
    ServerListCommand RealmList{Program, ServerListCommand::List::RealmList};
    KeysCommand Keys{Program};
    SignCommand Sign{Program};
    AdoptCommand Adopt{Program};
};

} // namespace Varnholt::Publisher
