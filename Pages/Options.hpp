#pragma once

#include <CLI/CLI.hpp>
#include <QStringList>

#include <vector>

/// What pages about a program need of its parser.
namespace Varnholt::Pages {

QString Text(std::string const& p_Text);

std::vector<CLI::App const*> Commands(CLI::App const& p_Program);
/// Those that the help shows of a program or command; of a command those of its own.
std::vector<CLI::Option const*> Options(CLI::App const& p_App);
/// What stands without a name behind a command.
std::vector<CLI::Option const*> Arguments(CLI::App const& p_Command);

/// With their dashes, the short ones first.
QStringList Names(CLI::Option const& p_Option);
/// What stands for the value in the help: "FILE"; empty: none, it is a flag.
QString ValueName(CLI::Option const& p_Option);
/// All that the value can be; empty when that is much. The help tells it, as "WHEN:{auto,never}",
/// as "One of: this, that; ...", or as COMMAND.
QStringList Choices(CLI::App const& p_Program, CLI::Option const& p_Option);

} // namespace Varnholt::Pages
