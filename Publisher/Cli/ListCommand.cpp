#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Tree/BuildCatalog.hpp"

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

QString TextOf(CatalogedBuild const& p_Build, QStringList const& p_Channels)
{
    QString line = QStringLiteral("%1  %2 files (%3 streamed), %4 bytes")
                       .arg(p_Build.Id, QString::number(p_Build.Files),
                            QString::number(p_Build.StreamedFiles), QString::number(p_Build.Bytes));
    if (!p_Build.Missing.isEmpty())
        line += QStringLiteral(", incomplete: %1 missing").arg(p_Build.Missing.size());
    if (!p_Channels.isEmpty())
        line += QStringLiteral("  on ") + p_Channels.join(QStringLiteral(", "));
    return line;
}

QJsonObject ObjectOf(CatalogedBuild const& p_Build, QStringList const& p_Channels)
{
    return {{QStringLiteral("type"), QStringLiteral("build")},
            {QStringLiteral("build"), p_Build.Id},
            {QStringLiteral("name"), p_Build.Name},
            {QStringLiteral("number"), p_Build.Number},
            {QStringLiteral("files"), p_Build.Files},
            {QStringLiteral("streamedFiles"), p_Build.StreamedFiles},
            {QStringLiteral("bytes"), p_Build.Bytes},
            {QStringLiteral("missingFiles"), p_Build.Missing.size()},
            {QStringLiteral("channels"), QJsonArray::fromStringList(p_Channels)}};
}

class ListCommand : public Command {
public:
    explicit ListCommand(CLI::App& p_Program);

    int Run() const override;
};

ListCommand::ListCommand(CLI::App& p_Program)
    : Command(p_Program, "list", "List the builds of a published tree",
              "Example:\n"
              "  varnholt-publish list --output /srv/www\n"
              "\n"
              "One line for each build, in the order in which they were published, with the\n"
              "channels that offer it: live or dev.\n")
{
    AddOutput()->required();
    AddAppId();
    AddJson();
}

int ListCommand::Run() const
{
    // A mirror's copy can be listed too.
    BuildCatalog const catalog(Output(), AppId());
    catalog.CheckIsPublished();
    for (QString const& id : catalog.Builds()) {
        CatalogedBuild const build = catalog.Read(id);
        QStringList const channels = ChannelsOf(catalog, id);
        Tell(TextOf(build, channels), ObjectOf(build, channels));
    }
    return 0;
}

} // namespace

std::unique_ptr<Command> MakeListCommand(CLI::App& p_Program)
{
    return std::make_unique<ListCommand>(p_Program);
}

} // namespace Varnholt::Publisher
