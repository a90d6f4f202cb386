#include "Publisher/Cli/ListCommand.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/PublishedTree.hpp"

#include <CLI/CLI.hpp>
#include <QJsonArray>

namespace Varnholt::Publisher {

namespace {

QStringList ChannelsOf(BuildCatalog const& p_Catalog, QString const& p_Build)
{
    QStringList channels;
    if (p_Catalog.BuildOn(false) == p_Build)
        channels += QStringLiteral("live");
    if (p_Catalog.BuildOn(true) == p_Build)
        channels += QStringLiteral("dev");
    return channels;
}

void PrintText(CatalogedBuild const& p_Build, QStringList const& p_Channels)
{
    QString line = QStringLiteral("%1  %2 files (%3 streamed), %4 bytes")
                       .arg(p_Build.Id, QString::number(p_Build.Files),
                            QString::number(p_Build.StreamedFiles), QString::number(p_Build.Bytes));
    if (!p_Build.Missing.isEmpty())
        line += QStringLiteral(", incomplete: %1 missing").arg(p_Build.Missing.size());
    if (!p_Channels.isEmpty())
        line += QStringLiteral("  on ") + p_Channels.join(QStringLiteral(", "));
    ConsoleText::PrintLine(line);
}

void PrintJson(CatalogedBuild const& p_Build, QStringList const& p_Channels)
{
    ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("build")},
                            {QStringLiteral("build"), p_Build.Id},
                            {QStringLiteral("name"), p_Build.Name},
                            {QStringLiteral("number"), p_Build.Number},
                            {QStringLiteral("files"), p_Build.Files},
                            {QStringLiteral("streamedFiles"), p_Build.StreamedFiles},
                            {QStringLiteral("bytes"), p_Build.Bytes},
                            {QStringLiteral("missingFiles"), p_Build.Missing.size()},
                            {QStringLiteral("channels"), QJsonArray::fromStringList(p_Channels)}});
}

} // namespace

ListCommand::ListCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("list", "List the builds of a published tree"))
{
    Command->footer("Example:\n"
                    "  varnholt-publish list --output /srv/www\n"
                    "\n"
                    "One line for each build, in the order in which they were published, with the\n"
                    "channels that offer it: live or dev.\n");
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool ListCommand::IsChosen() const
{
    return Command->parsed();
}

int ListCommand::Run() const
{
    QString const output = QString::fromStdString(Output);
    QString const appId = QString::fromStdString(AppId);
    // A mirror's copy can be listed too.
    PublishedTree const tree(output, appId);
    BuildCatalog const catalog(output, appId);
    for (QString const& id : catalog.Builds()) {
        CatalogedBuild const build = catalog.Read(id);
        QStringList const channels = ChannelsOf(catalog, id);
        if (Json)
            PrintJson(build, channels);
        else
            PrintText(build, channels);
    }
    return 0;
}

} // namespace Varnholt::Publisher
