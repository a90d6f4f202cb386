#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/BuildReport.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Cli/LocaleOption.hpp"
#include "Publisher/Cli/SigningArguments.hpp"
#include "Publisher/Publication/Publication.hpp"
#include "Publisher/Publication/PublishOptions.hpp"

#include <CLI/CLI.hpp>

#include <limits>

namespace Varnholt::Publisher {

namespace {

constexpr int c_MostJobs = 256;

constexpr char c_Footer[] =
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
    "The output folder is new, empty, or was made by this program.\n";

class BuildCommand : public Command {
public:
    explicit BuildCommand(CLI::App& p_Program);

    int Run() const override;

private:
    void AddOptions();
    PublishOptions Options() const;

    std::string Source;
    std::string Build;
    std::string Name;
    int Number = 0;
    std::string Rules;
    std::string LocaleList;
    std::string Hosts;
    std::string RealmList;
    std::string Platform = "mac";
    int Jobs = 0;
    bool Local = false;
    bool Dev = false;
    bool NoIndex = false;
    bool Rehash = false;
    bool DryRun = false;
    bool IfChanged = false;
    SigningArguments Signing;
};

BuildCommand::BuildCommand(CLI::App& p_Program)
    : Command(p_Program, "build", "Publish a game folder as a new build", c_Footer)
{
    AddOptions();
}

void BuildCommand::AddOptions()
{
    Words.add_option("--source", Source, "Folder that holds the game")->required();
    AddOutput()->required();
    Words.add_option("--build", Build, "The build's name in addresses, never used before")
        ->required();
    Words.add_option("--name", Name, "The build's name for people (default: as --build)");
    Words.add_option("--number", Number, "The build's number (default: 0)")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()));
    Words.add_option("--rules", Rules,
                     "Rules file (JSON); without it built-in rules apply, which \"rules\" shows");
    Words.add_option("--locales", LocaleList,
                     "Languages on offer, TAG=NAME,..., added to those of the rules file");
    CLI::Option* const hosts =
        Words.add_option("--hosts", Hosts,
                         "Servers that hold the content, HOST[:PORT],... (default: those "
                         "published before)");
    Words
        .add_flag("--local", Local,
                  "For trials: a new tree names 127.0.0.1:8080 as the server of its content")
        ->excludes(hosts);
    Words.add_option("--realmlist", RealmList,
                     "Address of the login server (default: the one published before)");
    AddAppId();
    Words.add_option("--platform", Platform, "System of the clients")
        ->check(CLI::IsMember({"mac", "win"}))
        ->capture_default_str();
    Words.add_flag("--dev", Dev, "Offer the build on the development channel only");
    Words.add_flag("--rehash", Rehash,
                   "Read every file, whatever the index says, and renew it; read the build's "
                   "content in the tree too and write anew what is damaged");
    Words.add_flag("--no-index", NoIndex, "Read every file and leave the index as it is");
    Words.add_option("--jobs", Jobs, "Files to read at once (default: the number of cores)")
        ->check(CLI::Range(1, c_MostJobs));
    Signing.AddTo(Words);
    Words.add_flag("--dry-run", DryRun, "Only tell what would be written, but for signatures");
    Words.add_flag("--if-changed", IfChanged,
                   "Publish nothing when the build on offer already equals the source");
    AddJson();
}

int BuildCommand::Run() const
{
    PublishOptions const options = Options();
    Interruption::Watch();
    PublicationSummary summary;
    {
        BuildProgress progress(WantsJson());
        summary = Publication(options, progress).Run();
    }
    if (WantsJson())
        BuildReport::PrintJson(options, summary);
    else
        BuildReport::PrintText(options, summary);
    return 0;
}

PublishOptions BuildCommand::Options() const
{
    PublishOptions options;
    options.Source = QString::fromStdString(Source);
    options.Output = Output();
    options.Build.Id = QString::fromStdString(Build);
    options.Build.Name = QString::fromStdString(Name.empty() ? Build : Name);
    options.Build.Number = Number;
    options.RulesFile = QString::fromStdString(Rules);
    if (Words.count("--locales") > 0)
        options.Locales = ParseLocales(QString::fromStdString(LocaleList));
    if (Words.count("--hosts") > 0)
        options.Hosts = QString::fromStdString(Hosts).split(QLatin1Char(','));
    if (Words.count("--realmlist") > 0)
        options.RealmListAddress = QString::fromStdString(RealmList);
    options.Local = Local;
    options.AppId = AppId();
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

} // namespace

std::unique_ptr<Command> MakeBuildCommand(CLI::App& p_Program)
{
    return std::make_unique<BuildCommand>(p_Program);
}

} // namespace Varnholt::Publisher
