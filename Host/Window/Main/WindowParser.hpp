#pragma once

#include "Host/Cli/Choice.hpp"

#include <CLI/CLI.hpp>
#include <QString>

#include <string>

namespace Varnholt::Host {

/// The options of the program. Each can also stand in the environment, as VARNHOLT_ and its name.
class WindowParser {
public:
    WindowParser();

    /// Throws what CLI11 throws. What is not given stays empty.
    Choice Parse(int p_Count, char const* const* p_Arguments);
    /// Absolute; of the module that comes with the program when none is given.
    QString ModuleFolder() const;
    /// The help or version that was asked for, lines.
    std::string Answer(CLI::Success const& p_Help) const;
    /// Every option with its help.
    CLI::App const& Model() const { return Program; }

private:
    void Add(std::string const& p_Name, std::string& p_Place, char const* p_Takes,
             std::string const& p_Help);

    CLI::App Program{"Installs games, keeps them up to date and starts them, in a window",
                     "varnholt-window"};
    std::string Modules, Settings, Server, LogFile;
};

} // namespace Varnholt::Host
