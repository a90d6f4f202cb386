#pragma once

#include "Publisher/Cli/Command.hpp"

#include <memory>

namespace Varnholt::Publisher {

// Each adds its command to the program.
std::unique_ptr<Command> MakeAdoptCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeBuildCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeDiffCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeHostsCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeKeysCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeListCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakePruneCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeRealmListCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeRollbackCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeRulesCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeServeCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeSignCommand(CLI::App& p_Program);
std::unique_ptr<Command> MakeVerifyCommand(CLI::App& p_Program);

} // namespace Varnholt::Publisher
