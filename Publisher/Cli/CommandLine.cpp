#include "Publisher/Cli/CommandLine.hpp"

#include "Programs/StandardStreams.hpp"
#include "Programs/Suggestion.hpp"
#include "Publisher/Cli/AdoptCommand.hpp"
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

/// What is wrong with the words of a command line, and what may be meant. An unknown word goes
/// before what is missing: it is mostly the missing one, misspelt.
QString UsageSentence(CLI::App const& p_Program, CLI::ParseError const& p_Error)
{
    std::vector<CLI::App const*> apps{&p_Program};
    for (CLI::App const* const command : p_Program.get_subcommands())
        apps.push_back(command);
    QString const help =
        QStringLiteral("\"%1%2 --help\" explains it")
            .arg(QString::fromStdString(p_Program.get_name()),
                 apps.size() > 1
                     ? QLatin1Char(' ') + QString::fromStdString(apps.back()->get_name())
                     : QString());
    std::vector<std::string> const unknown = p_Program.remaining(true);
    if (unknown.empty())
        return QString::fromUtf8(p_Error.what()) + QStringLiteral("; ") + help;
    QString const word = QString::fromStdString(unknown.front()).section(QLatin1Char('='), 0, 0);
    QStringList known;
    for (CLI::App const* const app : apps) {
        for (CLI::Option const* const option : app->get_options()) {
            for (std::string const& name : option->get_lnames())
                known += QStringLiteral("--") + QString::fromStdString(name);
        }
    }
    if (apps.size() == 1) {
        for (CLI::App const* const command : p_Program.get_subcommands({}))
            known += QString::fromStdString(command->get_name());
    }
    QString const kind = word.startsWith(QLatin1Char('-')) ? QStringLiteral("option")
                         : apps.size() == 1                ? QStringLiteral("command")
                                                           : QStringLiteral("argument");
    QString const suggestion = Programs::Suggestion(word, known);
    return QStringLiteral("unknown %1 \"%2\"; %3")
        .arg(kind, word, suggestion.isEmpty() ? help : suggestion);
}

int Run(int p_Count, char const* const* p_Arguments)
{
    CLI::App program("Publishes a game so that any web server with byte ranges can serve it",
                     "varnholt-publish");
    program.set_version_flag("--version", VARNHOLT_VERSION);
    program.require_subcommand(0, 1); // that there is one is asked after unknown words were told
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
    AdoptCommand const adopt(program);
    try {
        program.parse(p_Count, p_Arguments);
        if (program.get_subcommands().empty())
            throw CLI::RequiredError("A command");
        return RunChosen(build, serve, diff, verify, rules, list, rollback, prune, hosts, realmList,
                         adopt);
    } catch (CLI::Success const& help) {
        std::ostringstream text;
        int const status = program.exit(help, text);
        Programs::StandardStreams::Write(stdout, QString::fromStdString(text.str()));
        return status;
    } catch (CLI::ParseError const& error) {
        return Report(UsageSentence(program, error), Failure::c_Usage);
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
