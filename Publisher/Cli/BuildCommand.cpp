#include "Publisher/Cli/BuildCommand.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/BuildReport.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Cli/LocaleOption.hpp"
#include "Publisher/Publication/Publication.hpp"

#include <CLI/CLI.hpp>

#include <limits>

namespace Varnholt::Publisher {

namespace {

constexpr int c_MostJobs = 256;

} // namespace

BuildCommand::BuildCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("build", "Publish a game folder as a new build"))
{
    Command->footer(
        "Example:\n"
        "  varnholt-publish build --source Game --output /srv/www --build 18414 \\\n"
        "      --name \"5.4.8 (18414)\" --number 18414 --rules rules.json \\\n"
        "      --hosts cdn1.example.net,cdn2.example.net --realmlist logon.example.net\n"
        "\n"
        "The rules file gives properties to paths; a later rule overrides an earlier one:\n"
        "  {\"locales\": {\"frFR\": \"Français\"},\n"
        "   \"rules\": [{\"match\": \"Game.app/Contents/MacOS/Game\",\n"
        "              \"flags\": [\"executable\", \"game-executable\"]},\n"
        "             {\"match\": \"Data/frFR/**\", \"locale\": \"frFR\"},\n"
        "             {\"match\": \"Data/Music/**\", \"streamed\": true},\n"
        "             {\"match\": \"**/*.psd\", \"exclude\": true}]}\n"
        "Flags: read-only, executable, game-executable, first-build-only,\n"
        "       default-server-only, keep-if-present\n"
        "Exactly one file has the flag game-executable.\n"
        "\n"
        "Digests are kept in an index in the output folder; a file whose path, size, time\n"
        "and inode are as they were is not read again. A run that was interrupted or killed is\n"
        "gone on with by the next one.\n"
        "The output folder is new, empty, or was made by this program.\n");
    AddOptions();
}

void BuildCommand::AddOptions()
{
    Command->add_option("--source", Source, "Folder that holds the game")->required();
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    Command->add_option("--build", Build, "The build's name in addresses, never used before")
        ->required();
    Command->add_option("--name", Name, "The build's name for people (default: as --build)");
    Command->add_option("--number", Number, "The build's number (default: 0)")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()));
    Command->add_option(
        "--rules", Rules,
        "Rules file (JSON); without it built-in rules apply, which \"rules\" shows");
    Command->add_option("--locales", LocaleList,
                        "Languages on offer, TAG=NAME,..., added to those of the rules file");
    CLI::Option* const hosts =
        Command->add_option("--hosts", Hosts,
                            "Servers that hold the content, HOST[:PORT],... (default: those "
                            "published before)");
    Command
        ->add_flag("--local", Local,
                   "For trials: a new tree names 127.0.0.1:8080 as the server of its content")
        ->excludes(hosts);
    Command->add_option("--realmlist", RealmList,
                        "Address of the login server (default: the one published before)");
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_option("--platform", Platform, "System of the clients")
        ->check(CLI::IsMember({"mac", "win"}))
        ->capture_default_str();
    Command->add_flag("--dev", Dev, "Offer the build on the development channel only");
    Command->add_flag("--rehash", Rehash,
                      "Read every file, whatever the index says, and renew it; read the build's "
                      "content in the tree too and write anew what is damaged");
    Command->add_flag("--no-index", NoIndex, "Read every file and leave the index as it is");
    Command->add_option("--jobs", Jobs, "Files to read at once (default: the number of cores)")
        ->check(CLI::Range(1, c_MostJobs));
    Signing.AddTo(*Command);
    Command->add_flag("--dry-run", DryRun, "Only tell what would be written, but for signatures");
    Command->add_flag("--if-changed", IfChanged,
                      "Publish nothing when the build on offer already equals the source");
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool BuildCommand::IsChosen() const
{
    return Command->parsed();
}

int BuildCommand::Run() const
{
    PublishOptions const options = Options();
    Interruption::Watch();
    PublicationSummary summary;
    {
        BuildProgress progress(Json);
        summary = Publication(options, progress).Run();
    }
    BuildReport const report(options, summary);
    if (Json)
        report.PrintJson();
    else
        report.PrintText();
    return 0;
}

PublishOptions BuildCommand::Options() const
{
    PublishOptions options;
    options.Source = QString::fromStdString(Source);
    options.Output = QString::fromStdString(Output);
    options.Build.Id = QString::fromStdString(Build);
    options.Build.Name = QString::fromStdString(Name.empty() ? Build : Name);
    options.Build.Number = Number;
    options.RulesFile = QString::fromStdString(Rules);
    if (Command->count("--locales") > 0)
        options.Locales = ParseLocales(QString::fromStdString(LocaleList));
    if (Command->count("--hosts") > 0)
        options.Hosts = QString::fromStdString(Hosts).split(QLatin1Char(','));
    if (Command->count("--realmlist") > 0)
        options.RealmListAddress = QString::fromStdString(RealmList);
    options.Local = Local;
    options.AppId = QString::fromStdString(AppId);
    options.Platform = Platform == "win" ? ContentPlatform::Windows : ContentPlatform::Mac;
    options.DevChannel = Dev;
    options.ReadIndex = !NoIndex && !Rehash;
    options.WriteIndex = !NoIndex;
    options.ReadStore = Rehash;
    options.Jobs = Jobs;
    options.DryRun = DryRun;
    options.IfChanged = IfChanged;
    if (!DryRun)
        options.Signing = Signing.Options();
    return options;
}

} // namespace Varnholt::Publisher
