#include "Publisher/Cli/CommandLine.hpp"

#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Failure.hpp"

#include <sstream>

namespace Varnholt::Publisher {

namespace {

/// What the options name that are alike in all commands.
constexpr std::pair<char const*, char const*> c_Paths[] = {
    {"--source", "DIR"}, {"--output", "DIR"}, {"--root", "DIR"}, {"--rules", "FILE"}};

int Report(QString const& p_Cause, int p_Status)
{
    ConsoleText::PrintErrorLine(QStringLiteral("varnholt-publish: ") + p_Cause);
    return p_Status;
}

/// Runs the one command that was called.
template <typename... Commands>
int RunChosen(Commands const&... p_Commands)
{
    int status = 0;
    (void)((p_Commands.IsChosen() && (status = p_Commands.Run(), true)) || ...);
    return status;
}

} // namespace

CommandLine::CommandLine()
{
    Program.set_version_flag("--version", VARNHOLT_VERSION);
    Program.require_subcommand(1);
    Program.footer("\"varnholt-publish COMMAND --help\" explains a command.\n");
    for (CLI::App* const command : Program.get_subcommands({}))
        for (auto const& [name, value] : c_Paths)
            if (CLI::Option* const option = command->get_option_no_throw(name))
                option->type_name(value);
}

int CommandLine::RunCommand(int p_Count, char const* const* p_Arguments)
{
    try {
        Program.parse(p_Count, p_Arguments);
        return RunChosen(Build, Serve, Diff, Verify, Rules, List, Rollback, Prune);
    } catch (CLI::Success const& help) {
        std::ostringstream text;
        int const status = Program.exit(help, text);
        Programs::StandardStreams::Write(stdout, QString::fromStdString(text.str()));
        return status;
    } catch (CLI::ParseError const& error) {
        return Report(QString::fromUtf8(error.what()), Failure::c_Usage);
    } catch (Failure const& failure) {
        return Report(QString::fromUtf8(failure.what()), failure.ExitStatus());
    } catch (std::exception const& error) {
        return Report(QString::fromUtf8(error.what()), Failure::c_Other);
    }
}

int CommandLine::Run(int p_Count, char const* const* p_Arguments)
{
    int const status = RunCommand(p_Count, p_Arguments);
    QString const why = Programs::StandardStreams::WhyLost();
    if (why.isEmpty())
        return status;
    int const lost =
        Report(QStringLiteral("the results cannot be written (%1)").arg(why), Failure::c_Other);
    return status == 0 ? lost : status;
}

} // namespace Varnholt::Publisher
