#include "Publisher/Cli/CommandLine.hpp"

#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/BuildCommand.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/DiffCommand.hpp"
#include "Publisher/Cli/ListCommand.hpp"
#include "Publisher/Cli/PruneCommand.hpp"
#include "Publisher/Cli/RollbackCommand.hpp"
#include "Publisher/Cli/RulesCommand.hpp"
#include "Publisher/Cli/ServeCommand.hpp"
#include "Publisher/Cli/ServerListCommand.hpp"
#include "Publisher/Cli/VerifyCommand.hpp"
#include "Publisher/Failure.hpp"

#include <CLI/CLI.hpp>

#include <sstream>

namespace Varnholt::Publisher {

namespace {

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

int Run(int p_Count, char const* const* p_Arguments)
{
    CLI::App program("Publishes a game so that any web server with byte ranges can serve it",
                     "varnholt-publish");
    program.set_version_flag("--version", VARNHOLT_VERSION);
    program.require_subcommand(1);
    program.footer("\"varnholt-publish COMMAND --help\" explains a command.\n");
    BuildCommand const build(program);
    ServeCommand const serve(program);
    DiffCommand const diff(program);
    VerifyCommand const verify(program);
    RulesCommand const rules(program);
    ListCommand const list(program);
    RollbackCommand const rollback(program);
    PruneCommand const prune(program);
    ServerListCommand const hosts(program, ServerListCommand::List::Hosts);
    ServerListCommand const realmList(program, ServerListCommand::List::RealmList);
    try {
        program.parse(p_Count, p_Arguments);
        return RunChosen(build, serve, diff, verify, rules, list, rollback, prune, hosts,
                         realmList);
    } catch (CLI::Success const& help) {
        std::ostringstream text;
        int const status = program.exit(help, text);
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

} // namespace

int RunCommandLine(int p_Count, char const* const* p_Arguments)
{
    int const status = Run(p_Count, p_Arguments);
    QString const why = Programs::StandardStreams::WhyLost();
    if (why.isEmpty())
        return status;
    int const lost =
        Report(QStringLiteral("the results cannot be written (%1)").arg(why), Failure::c_Other);
    return status == 0 ? lost : status;
}

} // namespace Varnholt::Publisher
