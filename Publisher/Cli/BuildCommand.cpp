#include "Publisher/Cli/BuildCommand.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Publication.hpp"

#include <CLI/CLI.hpp>

#include <limits>

namespace Varnholt::Publisher {

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
        "             {\"match\": \"**/.DS_Store\", \"exclude\": true}]}\n"
        "Flags: read-only, executable, game-executable, first-build-only,\n"
        "       default-server-only, keep-if-present\n"
        "Exactly one file has the flag game-executable.\n");
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
    Command->add_option("--rules", Rules, "Rules file (JSON)");
    Command->add_option("--locales", LocaleList,
                        "Languages on offer, TAG=NAME,..., added to those of the rules file");
    Command->add_option("--hosts", Hosts,
                        "Servers that hold the content, HOST[:PORT],... (default: those "
                        "published before, or 127.0.0.1:8080)");
    Command->add_option("--realmlist", RealmList,
                        "Address of the login server (default: the one published before)");
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_option("--platform", Platform, "System of the clients")
        ->check(CLI::IsMember({"mac", "win"}))
        ->capture_default_str();
    Command->add_flag("--dev", Dev, "Offer the build on the development channel only");
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
        BuildProgress progress;
        summary = Publication(options, progress).Run();
    }
    PrintSummary(options, summary);
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
    options.Locales = Locales();
    if (Command->count("--hosts") > 0)
        options.Hosts = QString::fromStdString(Hosts).split(QLatin1Char(','));
    if (Command->count("--realmlist") > 0)
        options.RealmListAddress = QString::fromStdString(RealmList);
    options.AppId = QString::fromStdString(AppId);
    options.Platform = Platform == "win" ? ContentPlatform::Windows : ContentPlatform::Mac;
    options.DevChannel = Dev;
    return options;
}

std::map<QString, QString> BuildCommand::Locales() const
{
    std::map<QString, QString> locales;
    if (Command->count("--locales") == 0)
        return locales;
    for (QString const& item : QString::fromStdString(LocaleList).split(QLatin1Char(','))) {
        int const sign = item.indexOf(QLatin1Char('='));
        if (sign <= 0 || sign + 1 == item.size()) {
            throw Failure(
                QStringLiteral("--locales \"%1\": write TAG=NAME, such as frFR=Français").arg(item),
                Failure::c_Usage);
        }
        if (!locales.emplace(item.left(sign), item.mid(sign + 1)).second) {
            throw Failure(
                QStringLiteral("--locales: the tag %1 is given twice").arg(item.left(sign)),
                Failure::c_Usage);
        }
    }
    return locales;
}

void BuildCommand::PrintSummary(PublishOptions const& p_Options,
                                PublicationSummary const& p_Summary)
{
    using namespace ConsoleText;
    qint64 const milliseconds = qMax<qint64>(1, p_Summary.Milliseconds);
    PrintLine(QStringLiteral("Published build %1 in %2").arg(p_Options.Build.Id, p_Options.Output));
    PrintLine(QStringLiteral("files        %1 (%2 streamed)")
                  .arg(QString::number(p_Summary.Files), QString::number(p_Summary.StreamedFiles)));
    PrintLine(QStringLiteral("bytes        %1").arg(p_Summary.Bytes));
    PrintLine(QStringLiteral("new content  %1 bytes in %2 files")
                  .arg(QString::number(p_Summary.NewContentBytes),
                       QString::number(p_Summary.NewContentFiles)));
    PrintLine(QStringLiteral("rate         %1/s (%2 s)")
                  .arg(Bytes(p_Summary.Bytes * 1000 / milliseconds),
                       QString::number(static_cast<double>(milliseconds) / 1000, 'f', 1)));
}

} // namespace Varnholt::Publisher
