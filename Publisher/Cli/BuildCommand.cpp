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
    : m_Command(p_Program.add_subcommand("build", "Publish a game folder as a new build"))
{
    m_Command->footer(
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
    m_Command->add_option("--source", m_Source, "Folder that holds the game")->required();
    m_Command->add_option("--output", m_Output, "Folder of the published tree")->required();
    m_Command->add_option("--build", m_Build, "The build's name in addresses, never used before")
        ->required();
    m_Command->add_option("--name", m_Name, "The build's name for people (default: as --build)");
    m_Command->add_option("--number", m_Number, "The build's number (default: 0)")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()));
    m_Command->add_option("--rules", m_Rules, "Rules file (JSON)");
    m_Command->add_option("--locales", m_Locales,
                          "Languages on offer, TAG=NAME,..., added to those of the rules file");
    m_Command->add_option("--hosts", m_Hosts,
                          "Servers that hold the content, HOST[:PORT],... (default: those "
                          "published before, or 127.0.0.1:8080)");
    m_Command->add_option("--realmlist", m_RealmList,
                          "Address of the login server (default: the one published before)");
    m_Command->add_option("--app-id", m_AppId, "Application identifier")->capture_default_str();
    m_Command->add_option("--platform", m_Platform, "System of the clients")
        ->check(CLI::IsMember({"mac", "win"}))
        ->capture_default_str();
    m_Command->add_flag("--dev", m_Dev, "Offer the build on the development channel only");
}

bool BuildCommand::IsChosen() const
{
    return m_Command->parsed();
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
    options.Source = QString::fromStdString(m_Source);
    options.Output = QString::fromStdString(m_Output);
    options.Build.Id = QString::fromStdString(m_Build);
    options.Build.Name = QString::fromStdString(m_Name.empty() ? m_Build : m_Name);
    options.Build.Number = m_Number;
    options.RulesFile = QString::fromStdString(m_Rules);
    options.Locales = Locales();
    if (m_Command->count("--hosts") > 0)
        options.Hosts = QString::fromStdString(m_Hosts).split(QLatin1Char(','));
    if (m_Command->count("--realmlist") > 0)
        options.RealmListAddress = QString::fromStdString(m_RealmList);
    options.AppId = QString::fromStdString(m_AppId);
    options.Platform = m_Platform == "win" ? ContentPlatform::Windows : ContentPlatform::Mac;
    options.DevChannel = m_Dev;
    return options;
}

std::map<QString, QString> BuildCommand::Locales() const
{
    std::map<QString, QString> locales;
    if (m_Command->count("--locales") == 0)
        return locales;
    for (QString const& item : QString::fromStdString(m_Locales).split(QLatin1Char(','))) {
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
