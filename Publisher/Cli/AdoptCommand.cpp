#include "Publisher/Cli/AdoptCommand.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/KeyFiles.hpp"
#include "Publisher/Publication/TreeAdoption.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

AdoptCommand::AdoptCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("adopt", "Go on publishing in a copy of a published tree"))
{
    Command->footer("Example, on a mirror, when the publisher's machine is lost:\n"
                    "  varnholt-publish adopt --output /srv/www\n"
                    "\n"
                    "Every byte that the channels offer is read before. Then build, rollback and\n"
                    "prune work there as they did in the tree that was copied.\n");
    Command->add_option("--output", Output, "Folder of the copy")->required();
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_option("--trust-key", TrustKey, "Public key of a signed copy, or a file of it");
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool AdoptCommand::IsChosen() const
{
    return Command->parsed();
}

int AdoptCommand::Run() const
{
    QString const output = QString::fromStdString(Output);
    {
        BuildProgress progress(Json);
        std::optional<Signing::PublicKey> key;
        if (!TrustKey.empty())
            key = KeyFiles::Public(QString::fromStdString(TrustKey));
        AdoptTree(output, QString::fromStdString(AppId), key, progress);
    }
    if (Json)
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("adopt")},
                                {QStringLiteral("output"), output}});
    else
        ConsoleText::PrintLine(output + QStringLiteral(" is a published tree now"));
    return 0;
}

} // namespace Varnholt::Publisher
