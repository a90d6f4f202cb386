#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/KeptOption.hpp"

#include <CLI/CLI.hpp>

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace Varnholt::Host {

/// The commands and options of the program. Each option can also stand in the environment, as
/// VARNHOLT_ and its name.
class CommandParser {
public:
    CommandParser();

    /// Throws what CLI11 throws.
    Choice Parse(int p_Count, char const* const* p_Arguments);
    /// The help or version that was asked for, lines.
    QString Answer(CLI::Success const& p_Help) const;
    /// What to do about a command line that could not be understood: the word perhaps meant.
    QString Remedy() const;

    /// Every command and option with its help.
    CLI::App const& Model() const { return Program; }

private:
    struct Command {
        CLI::App* App;
        std::function<void(Choice&)> Choose;
    };

    /// A place for the value of an option.
    struct Value {
        QString Name;
        CLI::Option* Option = nullptr;
        std::string Text;
        bool Flag = false;
    };

    CLI::App* Add(std::string const& p_Name, std::string const& p_Help,
                  std::string const& p_Example, std::function<void(Choice&)> p_Choose);
    void AddOptions();
    void AddKeptOption(KeptOption const& p_Option);
    void RefusePassword();
    void AddRunCommands();
    void AddCheckCommand();
    void AddLocaleCommands();
    void AddGameCommands();
    void AddControlCommands();
    static std::string ExitStatuses();
    std::string OptionsOfAll() const;
    void Explain();

    /// Takes what "play" leaves to the game, which may look like options of this program.
    /// \return how many words stand before it
    int TakeGameArguments(int p_Count, char const* const* p_Arguments);

    CLI::App Program{"Installs a game, keeps it up to date and starts it", "varnholt-host"};
    std::vector<Command> Commands;
    std::deque<Value> Kept; ///< the parser holds on to their places
    std::string Settings, Folder, Code, Account;
    QStringList GameArguments;
    std::string ConfigKey, ConfigValue, Topic;
    CLI::App const* Explained = nullptr; ///< whose help was asked for by a command
    CLI::Option* ConfigValueOption = nullptr;
    bool All = false, Yes = false, Json = false, Quiet = false, Verbose = false, Quick = false;
    bool DeletesFiles = false, Waits = false, Remembers = false, Forgets = false,
         ConfigList = false;
};

} // namespace Varnholt::Host
