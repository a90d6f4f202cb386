#include "Host/Cli/CommandParser.hpp"

#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/OptionText.hpp"

namespace Varnholt::Host {

namespace {

QString Text(std::string const& p_Text)
{
    return QString::fromUtf8(p_Text.c_str(), static_cast<int>(p_Text.size()));
}

/// A script's unset variable gives an empty text, which must not be taken for the current folder or
/// for the user's own settings.
std::string WhyNotText(std::string const& p_Text)
{
    return p_Text.empty() ? "it is empty" : "";
}

CLI::Validator NotEmpty()
{
    return {WhyNotText, ""};
}

/// "--limit-rate" and "-l,--limit-rate" are VARNHOLT_LIMIT_RATE.
std::string VariableOf(std::string const& p_Names)
{
    QString const name = Text(p_Names).section(QStringLiteral("--"), -1).toUpper();
    return "VARNHOLT_" + QString(name).replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
}

/// CLI11 takes more words for yes and no than the help tells of.
CLI::Option* AddFlag(CLI::App& p_App, std::string const& p_Names, bool& p_Place,
                     std::string const& p_Help)
{
    auto const check = [](std::string const& p_Text) {
        return OptionText::WhyNotYesOrNo(Text(p_Text)).toStdString();
    };
    return p_App.add_flag(p_Names, p_Place, p_Help)
        ->check(CLI::Validator(check, ""))
        ->envname(VariableOf(p_Names));
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
    command->footer(OptionsOfAll() + "Example:\n  " + Program.get_name() + " " + p_Example + "\n");
    Commands.push_back({command, std::move(p_Choose)});
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
    AddFlag(Program, "-y,--yes", Yes, "Answer every question with yes");
    AddFlag(Program, "--json", Json, "Write one JSON object per line, for programs");
    AddFlag(Program, "-q,--quiet", Quiet, "Show results and failures only");
    AddFlag(Program, "-v,--verbose", Verbose, "Show the module's log");
}

void CommandParser::AddKeptOption(KeptOption const& p_Option)
{
    Value& value = Kept.emplace_back();
    value.Name = QString::fromLatin1(p_Option.Name);
    std::string const name = std::string("--") + p_Option.Name;
    if (p_Option.IsFlag())
        value.Option = AddFlag(Program, name, value.Flag, p_Option.Help);
    else
        value.Option = Program.add_option(name, value.Text, p_Option.Help)
                           ->check(CheckOf(p_Option))
                           ->envname(VariableOf(name))
                           ->type_name(p_Option.Takes);
    if (p_Option.OfNetwork)
        value.Option->group("Network options");
}

/// The message about an unknown option would repeat the password.
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
    CLI::App* const info = Add("info", "Show what the module says about itself", "info --all",
                               [this](Choice& p_Choice) {
                                   p_Choice.Chosen = Choice::Command::Info;
                                   p_Choice.All = All;
                               });
    AddFlag(*info, "--all", All, "Show the other modules in its folder too");
    Add("status", "Show what is installed, without asking a server", "status",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Status; });
    Add("install", "Install the game into a folder, or go on with an installation",
        "install ~/Games/Game",
        [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Install;
            p_Choice.Request.Argument = OptionText::Absolute(Text(Folder));
        })
        ->add_option("folder", Folder, "Folder of the game; created when it does not exist")
        ->required()
        ->check(NotEmpty())
        ->type_name("DIR");
    AddCheckCommand();
    Add("update", "Fetch what is missing, damaged or new", "update", run(RunRequest::Type::Update));
    Add("repair", "Compare every file with the build, and fetch what differs", "repair",
        run(RunRequest::Type::Repair));
    Add("verify", "Compare every file with the build; changes nothing", "verify",
        run(RunRequest::Type::Verify));
    Add("mirrors", "Ask each mirror whether it is in order", "mirrors",
        run(RunRequest::Type::AskMirrors));
}

void CommandParser::AddCheckCommand()
{
    CLI::App* const check =
        Add("check", "Show what an update would fetch, and why; changes nothing", "check --quick",
            [this](Choice& p_Choice) {
                p_Choice.Request.Kind =
                    Folder.empty() ? RunRequest::Type::Check : RunRequest::Type::PreviewInstall;
                p_Choice.Request.Argument = OptionText::Absolute(Text(Folder));
                p_Choice.Request.Quick = Quick;
            });
    CLI::Option* const quick =
        AddFlag(*check, "--quick", Quick,
                "Compare the build with the installed one only: one small request");
    check
        ->add_option("--into", Folder,
                     "Show what an installation into this folder would fetch, whether there is "
                     "room for it, and what speaks against the folder")
        ->check(NotEmpty())
        ->excludes(quick)
        ->envname("VARNHOLT_INTO")
        ->type_name("DIR");
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
        Add("play", "Start the game; what stands behind \"--\" are arguments of its own",
            "play --account me@example.net -- -windowed", [this](Choice& p_Choice) {
                p_Choice.Request.Kind = RunRequest::Type::Play;
                p_Choice.Request.Argument = Text(Account);
                p_Choice.Request.GameArguments = GameArguments;
                p_Choice.Waits = Waits;
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
    AddFlag(*play, "--wait", Waits, "Wait for the end of the game, and succeed when that is well");
    CLI::Option* const remember =
        AddFlag(*play, "--remember", Remembers,
                "Ask for the password and keep it in the desktop's secret store")
            ->needs(account);
    AddFlag(*play, "--forget", Forgets,
            "Remove the password from the desktop's secret store and ask for it")
        ->needs(account)
        ->excludes(remember);

    CLI::App* const uninstall =
        Add("uninstall", "Forget the installation", "uninstall", [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Uninstall;
            p_Choice.Request.DeletesFiles = DeletesFiles;
        });
    AddFlag(*uninstall, "--delete-files", DeletesFiles,
            "Delete the game's files too; what is not of the game stays");
}

void CommandParser::AddControlCommands()
{
    Add("pause", "Pause the download of another varnholt-host", "pause",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Pause; });
    Add("resume", "Go on with a paused download", "resume",
        [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Resume; });
    Add("watch", "Follow the download of another varnholt-host to its end; Ctrl-C leaves it alone",
        "watch", [](Choice& p_Choice) { p_Choice.Chosen = Choice::Command::Watch; });
    CLI::App* const config =
        Add("config", "List, show or change what the settings file keeps of the options",
            "config content-url http://content.example.net/", [this](Choice& p_Choice) {
                p_Choice.Chosen = Choice::Command::Config;
                p_Choice.ConfigList = ConfigList;
                p_Choice.ConfigKey = Text(ConfigKey);
                if (ConfigValueOption->count() > 0)
                    p_Choice.ConfigValue = QLatin1String("") + Text(ConfigValue);
            });
    CLI::Option* const key =
        config
            ->add_option(
                "key", ConfigKey,
                "One of: " + ConfigCommand::Keys().join(QStringLiteral(", ")).toStdString() +
                    "; content-password is asked for, or read from standard input")
            ->type_name("KEY");
    ConfigValueOption =
        config->add_option("value", ConfigValue, "The new value; an empty one removes it")
            ->type_name("VALUE");
    config
        ->add_flag("--list", ConfigList,
                   "List every option with the value in force and where that comes from")
        ->excludes(key);
    Add("help", "Explain the program, or a command", "help install", [](Choice&) {})
        ->add_option("command", Topic, "The command to explain")
        ->type_name("COMMAND");
}

} // namespace Varnholt::Host
