#include "Publisher/Cli/CommandLine.hpp"

#include "Programs/StandardStreams.hpp"
#include "Programs/Suggestion.hpp"
#include "Publisher/Cli/Commands.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Failure.hpp"

#include <sstream>

namespace Varnholt::Publisher {

namespace {

/// What the options name that are alike in all commands.
constexpr std::pair<char const*, char const*> c_Paths[] = {
    {"--source", "DIR"},   {"--output", "DIR"},    {"--root", "DIR"},
    {"--rules", "FILE"},   {"--sign-key", "FILE"}, {"--password-file", "FILE"},
    {"--old", "FILE"},     {"--new", "FILE"},      {"--new-password-file", "FILE"},
    {"--trust-key", "KEY"}};

int Report(QString const& p_Cause, int p_Status, bool p_Json = false)
{
    if (p_Json) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("error")},
                                {QStringLiteral("text"), p_Cause},
                                {QStringLiteral("exitStatus"), p_Status}});
        return p_Status;
    }
    ConsoleText::PrintErrorLine(QStringLiteral("varnholt-publish: ") + p_Cause);
    return p_Status;
}

/// What is wrong with the words of a command line, and what may be meant. An unknown word is told
/// before a missing one: mostly it is the missing one, misspelt.
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

} // namespace

CommandLine::CommandLine()
{
    for (auto const make :
         {MakeBuildCommand, MakeServeCommand, MakeDiffCommand, MakeVerifyCommand, MakeRulesCommand,
          MakeListCommand, MakeRollbackCommand, MakePruneCommand, MakeHostsCommand,
          MakeRealmListCommand, MakeKeysCommand, MakeSignCommand, MakeAdoptCommand})
        Commands.push_back(make(Program));
    Program.set_version_flag("--version", VARNHOLT_VERSION);
    Program.require_subcommand(0, 1); // that there is one is asked after unknown words were told
    Program.footer("\"varnholt-publish COMMAND --help\" explains a command.\n");
    for (CLI::App* const command : Program.get_subcommands({}))
        for (auto const& [name, value] : c_Paths)
            if (CLI::Option* const option = command->get_option_no_throw(name))
                option->type_name(value);
}

int CommandLine::RunCommand(int p_Count, char const* const* p_Arguments)
{
    bool isJson = false;
    try {
        Program.parse(p_Count, p_Arguments);
        for (auto const& command : Commands) {
            if (!command->IsChosen())
                continue;
            isJson = command->WantsJson();
            return command->Run();
        }
        throw CLI::RequiredError("A command");
    } catch (CLI::Success const& help) {
        std::ostringstream text;
        int const status = Program.exit(help, text);
        Programs::StandardStreams::Write(stdout, QString::fromStdString(text.str()));
        return status;
    } catch (CLI::ParseError const& error) {
        return Report(UsageSentence(Program, error), Failure::c_Usage);
    } catch (Failure const& failure) {
        return Report(QString::fromUtf8(failure.what()), failure.ExitStatus(), isJson);
    } catch (std::exception const& error) {
        return Report(QString::fromUtf8(error.what()), Failure::c_Other, isJson);
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
