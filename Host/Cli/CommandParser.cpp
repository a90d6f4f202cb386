#include "Host/Cli/CommandParser.hpp"

#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Core/Failures/ExitStatus.hpp"

#include <QDir>
#include <QVariant>

#include <sstream>

namespace Varnholt::Host {

namespace {

QString Text(std::string const& p_Text)
{
    return QString::fromUtf8(p_Text.c_str(), static_cast<int>(p_Text.size()));
}

/// Refuses what an unset variable of a script leaves behind: it must not become the folder of this
/// program, or the settings of the user.
std::string WhyNotText(std::string const& p_Text)
{
    return p_Text.empty() ? "it is empty" : "";
}

CLI::Validator NotEmpty()
{
    return {WhyNotText, ""};
}

/// "limit-rate" is VARNHOLT_LIMIT_RATE.
std::string VariableOf(KeptOption const& p_Option)
{
    QString const name = QString::fromLatin1(p_Option.Name).toUpper();
    return "VARNHOLT_" + QString(name).replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
}

/// The help shows the choices behind the name of the value.
CLI::Validator CheckOf(KeptOption const& p_Option)
{
    QString const choices = p_Option.Choices().join(QLatin1Char(','));
    return {[p_Option](std::string const& p_Text) {
                return p_Text.empty() ? WhyNotText(p_Text)
                                      : p_Option.Fault(Text(p_Text)).toStdString();
            },
            choices.isEmpty() ? std::string() : '{' + choices.toStdString() + '}'};
}

std::string ExitStatuses()
{
    constexpr std::size_t c_Column = 5;

    std::string lines = "Exit status:\n";
    for (ExitStatus const& row : c_ExitStatuses) {
        std::string const status = std::to_string(row.Status);
        lines += "  " + status + std::string(c_Column - status.size(), ' ') + row.Meaning + "\n";
    }
    return lines;
}

/// The session changes the current folder.
QString Absolute(std::string const& p_Path)
{
    return p_Path.empty() ? QString()
                          : QDir::cleanPath(QDir::current().absoluteFilePath(Text(p_Path)));
}

} // namespace

CommandParser::CommandParser()
{
    Program.set_version_flag("--version", VARNHOLT_VERSION);
    Program.require_subcommand(0, 1); // that there is one is asked after unknown words were told
    Program.fallthrough();            // options may stand behind the command
    Program.footer("\"varnholt-host COMMAND --help\" explains a command.\n"
                   "Ctrl-C stops a download, which the same command resumes; SIGUSR1 pauses and "
                   "resumes it.\n" +
                   ExitStatuses());
    AddOptions();
    AddRunCommands();
    AddLocaleCommands();
    AddGameCommands();
    AddControlCommands();
}

CLI::App* CommandParser::Add(std::string const& p_Name, std::string const& p_Help,
                             std::string const& p_Example, std::function<void(Choice&)> p_Choose)
{
    CLI::App* const command = Program.add_subcommand(p_Name, p_Help);
    std::string const example = Program.get_name() + " " + p_Example;
    command->footer("Example:\n  " + example + "\n");
    Commands.push_back({command, example, std::move(p_Choose)});
    return command;
}

void CommandParser::AddOptions()
{
    Program
        .add_option("--settings", Settings,
                    "Settings file of host and module (default: varnholt/host.ini in the "
                    "user's configuration folder)")
        ->check(NotEmpty())
        ->envname("VARNHOLT_SETTINGS")
        ->type_name("FILE");
    for (KeptOption const& option : KeptOption::All())
        AddKeptOption(option);
    RefusePassword();
    Program.add_flag("-y,--yes", Yes, "Answer every question with yes")->envname("VARNHOLT_YES");
    Program.add_flag("--json", Json, "Write one JSON object per line, for programs")
        ->envname("VARNHOLT_JSON");
    Program.add_flag("-q,--quiet", Quiet, "Show results and failures only")
        ->envname("VARNHOLT_QUIET");
    Program.add_flag("-v,--verbose", Verbose, "Show the module's log")->envname("VARNHOLT_VERBOSE");
}

void CommandParser::AddKeptOption(KeptOption const& p_Option)
{
    Value& value = Kept.emplace_back();
    value.Name = QString::fromLatin1(p_Option.Name);
    std::string const name = std::string("--") + p_Option.Name;
    if (p_Option.IsFlag())
        value.Option = Program.add_flag(name, value.Flag, p_Option.Help);
    else
        value.Option = Program.add_option(name, value.Text, p_Option.Help)
                           ->check(CheckOf(p_Option))
                           ->type_name(p_Option.Takes);
    value.Option->envname(VariableOf(p_Option));
    if (p_Option.OfNetwork)
        value.Option->group("Network options");
}

/// As an unknown option it would be told with its value.
void CommandParser::RefusePassword()
{
    auto const refuse = [](std::string const&) {
        throw CLI::ValidationError("--content-password",
                                   "every user of the machine could read it there: "
                                   "\"config content-password\" asks for it");
    };
    Program.add_option_function<std::string>("--content-password", refuse)->group("");
}

void CommandParser::AddRunCommands()
{
    auto const run = [](RunRequest::Type p_Kind) {
        return [p_Kind](Choice& p_Choice) { p_Choice.Request.Kind = p_Kind; };
    };
    Add("info", "Show what the module says about itself", "info",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Info; });
    Add("status", "Show what is installed, without asking a server", "status",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Status; });
    Add("install", "Install the game into a folder, or go on with an installation",
        "install ~/Games/Game",
        [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Install;
            p_Choice.Request.Argument = Absolute(Folder);
        })
        ->add_option("folder", Folder, "Folder of the game; created when it does not exist")
        ->required()
        ->check(NotEmpty())
        ->type_name("DIR");
    Add("check", "Show what an update would fetch, and why; changes nothing", "check --quick",
        [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Check;
            p_Choice.Request.Quick = Quick;
        })
        ->add_flag("--quick", Quick,
                   "Compare the build with the installed one only: one small request")
        ->envname("VARNHOLT_QUICK");
    Add("update", "Fetch what is missing, damaged or new", "update", run(RunRequest::Type::Update));
    Add("repair", "Compare every file with the build, and fetch what differs", "repair",
        run(RunRequest::Type::Repair));
    Add("verify", "Compare every file with the build; changes nothing", "verify",
        run(RunRequest::Type::Verify));
    Add("mirrors", "Ask each mirror whether it is in order", "mirrors",
        run(RunRequest::Type::AskMirrors));
}

void CommandParser::AddLocaleCommands()
{
    Add("locales", "List the languages that the build offers", "locales",
        [](Choice& p_Choice) { p_Choice.Request.Kind = RunRequest::Type::ListLocales; });
    Add("locale", "Show the game's language, or choose it", "locale frFR",
        [this](Choice& p_Choice) {
            p_Choice.Chosen = Code.empty() ? Choice::Command::CurrentLocale : Choice::Command::Run;
            p_Choice.Request.Kind = RunRequest::Type::ChooseLocale;
            p_Choice.Request.Argument = Text(Code);
        })
        ->add_option("code", Code, "Language to choose, of those that \"locales\" lists")
        ->check(NotEmpty())
        ->type_name("CODE");
}

void CommandParser::AddGameCommands()
{
    CLI::App* const play =
        Add("play", "Start the game", "play --account me@example.net", [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Play;
            p_Choice.Request.Argument = Text(Account);
            p_Choice.Remembers = Remembers;
            p_Choice.Forgets = Forgets;
        });
    CLI::Option* const account =
        play->add_option("--account", Account,
                         "Account to log in; its password is asked for, or read from standard "
                         "input when that is no terminal, unless it is remembered")
            ->check(NotEmpty())
            ->envname("VARNHOLT_ACCOUNT")
            ->type_name("NAME");
    CLI::Option* const remember =
        play->add_flag("--remember", Remembers,
                       "Ask for the password and keep it in the desktop's secret store")
            ->envname("VARNHOLT_REMEMBER")
            ->needs(account);
    play->add_flag("--forget", Forgets,
                   "Remove the password from the desktop's secret store and ask for it")
        ->envname("VARNHOLT_FORGET")
        ->needs(account)
        ->excludes(remember);

    CLI::App* const uninstall =
        Add("uninstall", "Forget the installation", "uninstall", [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Uninstall;
            p_Choice.Request.DeletesFiles = DeletesFiles;
        });
    uninstall
        ->add_flag("--delete-files", DeletesFiles,
                   "Delete the game's files too; what is not of the game stays")
        ->envname("VARNHOLT_DELETE_FILES");
}

void CommandParser::AddControlCommands()
{
    Add("pause", "Pause the download of another varnholt-host", "pause",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Pause; });
    Add("resume", "Go on with a paused download", "resume",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Resume; });
    CLI::App* const config =
        Add("config", "List, show or change what the settings file keeps of the options",
            "config content-url http://content.example.net/", [this](Choice& p_Choice) {
                p_Choice.Chosen = Choice::Command::Config;
                p_Choice.ConfigKey = Text(ConfigKey);
                if (ConfigValueOption->count() > 0)
                    p_Choice.ConfigValue = QLatin1String("") + Text(ConfigValue);
            });
    config
        ->add_option("key", ConfigKey,
                     "One of: " + ConfigCommand::Keys().join(QStringLiteral(", ")).toStdString() +
                         "; content-password is asked for, or read from standard input")
        ->type_name("KEY");
    ConfigValueOption =
        config->add_option("value", ConfigValue, "The new value; an empty one removes it")
            ->type_name("VALUE");
}

QString CommandParser::Answer(CLI::Success const& p_Help) const
{
    std::ostringstream answer;
    Program.exit(p_Help, answer);
    return Text(answer.str());
}

std::string CommandParser::Example(std::string const& p_Command) const
{
    for (Command const& command : Commands)
        if (command.App->get_name() == p_Command)
            return command.Example;
    return {};
}

Choice CommandParser::Parse(int p_Count, char const* const* p_Arguments)
{
    Program.parse(p_Count, p_Arguments);
    if (Program.get_subcommands().empty())
        throw CLI::RequiredError("A command");
    Choice choice;
    choice.Chosen = Choice::Command::Run;
    for (Command const& command : Commands)
        if (command.App->parsed())
            command.Choose(choice);
    for (Value const& value : Kept)
        if (value.Option->count() > 0)
            choice.Given[value.Name] = value.Text.empty()
                                           ? QVariant(value.Flag).toString() // "true" or "false"
                                           : Text(value.Text);
    choice.Options.SettingsFile = Absolute(Settings);
    choice.Request.Confirmed = Yes;
    choice.Json = Json;
    choice.Quiet = Quiet;
    choice.Verbose = Verbose;
    return choice;
}

} // namespace Varnholt::Host
