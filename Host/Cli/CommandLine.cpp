#include "Host/Cli/CommandLine.hpp"

#include "Host/Cli/Console.hpp"
#include "Host/Cli/MessageLog.hpp"
#include "Host/Cli/Program.hpp"

#include <CLI/CLI.hpp>
#include <QDir>
#include <QUrl>

#include <functional>
#include <string>
#include <vector>

namespace Varnholt::Host {

namespace {

constexpr int c_UsageStatus = 2;

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

std::string WhyNotServer(std::string const& p_Text)
{
    QUrl const url(Text(p_Text), QUrl::StrictMode);
    bool const isHttp =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    bool const isPlain = !url.hasQuery() && !url.hasFragment();
    return url.isValid() && isHttp && isPlain && !url.host().isEmpty()
               ? ""
               : "\"" + p_Text + "\" is no server address like http://HOST[:PORT]/";
}

CLI::Validator NotEmpty()
{
    return {WhyNotText, ""};
}

Color ColorsNamed(std::string const& p_Name)
{
    if (p_Name == "always")
        return Color::Always;
    return p_Name == "never" ? Color::Never : Color::Auto;
}

/// The session changes the current folder.
QString Absolute(std::string const& p_Path)
{
    return p_Path.empty() ? QString()
                          : QDir::cleanPath(QDir::current().absoluteFilePath(Text(p_Path)));
}

/// The commands and options, as CLI11 fills them in.
class Parser {
public:
    Parser();

    /// Throws what CLI11 throws.
    Choice Parse(int p_Count, char const* const* p_Arguments);
    int Exit(CLI::Success const& p_Help) { return Program.exit(p_Help); }

private:
    CLI::App* Add(std::string const& p_Name, std::string const& p_Help,
                  std::string const& p_Example, std::function<void(Choice&)> p_Choose);
    void AddOptions();
    void AddRunCommands();
    void AddLocaleCommands();
    void AddGameCommands();

    CLI::App Program{"Installs a game, keeps it up to date and starts it", "varnholt-host"};
    std::vector<std::pair<CLI::App*, std::function<void(Choice&)>>> Commands;
    std::string Module, Settings, ContentUrl, Folder, Code, Account, Colors;
    bool DevChannel = false, Yes = false, Quiet = false, Verbose = false, DeletesFiles = false;
};

Parser::Parser()
{
    Program.set_version_flag("--version", VARNHOLT_VERSION);
    Program.require_subcommand(0, 1); // that there is one is asked after unknown words were told
    Program.fallthrough();            // options may stand behind the command
    Program.footer(
        "\"varnholt-host COMMAND --help\" explains a command.\n"
        "Ctrl-C stops a download, which the same command resumes; SIGUSR1 pauses and resumes it.\n"
        "Exit status: 0 done, 1 other failure, 2 usage, 3 update available,\n"
        "4 files wrong or given up, 5 network, 6 disk full, 7 permission or path, 8 game running "
        "or folder in use, 9 module cannot be loaded,\n"
        "130 interrupted.\n");
    AddOptions();
    AddRunCommands();
    AddLocaleCommands();
    AddGameCommands();
}

CLI::App* Parser::Add(std::string const& p_Name, std::string const& p_Help,
                      std::string const& p_Example, std::function<void(Choice&)> p_Choose)
{
    CLI::App* const command = Program.add_subcommand(p_Name, p_Help);
    command->footer("Example:\n  varnholt-host " + p_Example + "\n");
    Commands.emplace_back(command, std::move(p_Choose));
    return command;
}

void Parser::AddOptions()
{
    Program.add_option("--module", Module, "Module to load (default: the one beside this program)")
        ->check(NotEmpty())
        ->type_name("FILE");
    Program.add_option("--settings", Settings, "Settings file of host and module")
        ->check(NotEmpty())
        ->type_name("FILE");
    Program
        .add_option("--content-url", ContentUrl,
                    "Content server instead of the module's own, http://HOST[:PORT]/")
        ->check(CLI::Validator(WhyNotServer, ""))
        ->type_name("URL");
    Program.add_flag("--dev-channel", DevChannel, "Use the build of the development channel");
    Program.add_flag("-y,--yes", Yes, "Answer every question with yes");
    Program.add_flag("-q,--quiet", Quiet, "Show results and failures only");
    Program.add_flag("-v,--verbose", Verbose, "Show the module's log");
    Program.add_option("--color", Colors, "Colours: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN");
}

void Parser::AddRunCommands()
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
    Add("check", "Show what an update would fetch, and why; changes nothing", "check",
        run(RunRequest::Type::Check));
    Add("update", "Fetch what is missing, damaged or new", "update", run(RunRequest::Type::Update));
    Add("repair", "Compare every file with the build, and fetch what differs", "repair",
        run(RunRequest::Type::Repair));
    Add("verify", "Compare every file with the build; changes nothing", "verify",
        run(RunRequest::Type::Verify));
    Add("mirrors", "Ask each mirror whether it is in order", "mirrors",
        run(RunRequest::Type::AskMirrors));
}

void Parser::AddLocaleCommands()
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

void Parser::AddGameCommands()
{
    CLI::App* const play =
        Add("play", "Start the game", "play --account me@example.net", [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Play;
            p_Choice.Request.Argument = Text(Account);
        });
    play->add_option("--account", Account,
                     "Account to log in; its password is asked for, or read from standard input "
                     "when that is no terminal")
        ->check(NotEmpty())
        ->type_name("NAME");

    CLI::App* const uninstall =
        Add("uninstall", "Forget the installation", "uninstall", [this](Choice& p_Choice) {
            p_Choice.Request.Kind = RunRequest::Type::Uninstall;
            p_Choice.Request.DeletesFiles = DeletesFiles;
        });
    uninstall->add_flag("--delete-files", DeletesFiles,
                        "Delete the game's files too; what is not of the game stays");
}

Choice Parser::Parse(int p_Count, char const* const* p_Arguments)
{
    Program.parse(p_Count, p_Arguments);
    if (Program.get_subcommands().empty())
        throw CLI::RequiredError("A command");
    Choice choice;
    choice.Chosen = Choice::Command::Run;
    for (auto const& [command, choose] : Commands)
        if (command->parsed())
            choose(choice);
    choice.Options.ModuleFile = Absolute(Module);
    choice.Options.SettingsFile = Absolute(Settings);
    choice.Options.ContentUrl = Text(ContentUrl);
    choice.Options.UseDevChannel = DevChannel;
    choice.Request.Confirmed = Yes;
    choice.Colors = ColorsNamed(Colors);
    choice.Quiet = Quiet;
    choice.Verbose = Verbose;
    return choice;
}

} // namespace

int RunCommandLine(int p_Count, char const* const* p_Arguments)
{
    Parser parser;
    Choice choice;
    try {
        choice = parser.Parse(p_Count, p_Arguments);
    } catch (CLI::Success const& help) {
        return parser.Exit(help);
    } catch (CLI::ParseError const& error) {
        Console(Color::Auto, false)
            .Error(QString::fromUtf8(error.what()),
                   QStringLiteral("\"varnholt-host --help\" lists commands and options"));
        return c_UsageStatus;
    }
    Console console(choice.Colors, choice.Quiet);
    MessageLog const log(console, choice.Verbose);
    return Program(choice, console).Run();
}

} // namespace Varnholt::Host
