#include "Publisher/Cli/PruneCommand.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Failure.hpp"

#include <CLI/CLI.hpp>

#include <limits>

namespace Varnholt::Publisher {

PruneCommand::PruneCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("prune", "Remove old builds and what only they use"))
{
    Command->footer("Examples:\n"
                    "  varnholt-publish prune --output /srv/www --keep 3\n"
                    "  varnholt-publish prune --output /srv/www --build 18000 --build 18100\n"
                    "\n"
                    "A build that a channel offers stays in any case. Content that no remaining\n"
                    "build uses is removed too, also what an interrupted run has left.\n");
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    CLI::Option* const keep =
        Command->add_option("--keep", Keep, "Remove all but so many of the newest builds")
            ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    Command->add_option("--build", Builds, "Remove these builds")->excludes(keep);
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_flag("--dry-run", DryRun, "Only tell what would be removed");
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool PruneCommand::IsChosen() const
{
    return Command->parsed();
}

int PruneCommand::Run() const
{
    PruneOptions const options = Options();
    PruneSummary const summary = BuildPruning(options).Run();
    if (Json)
        PrintJson(summary);
    else
        PrintText(summary);
    return 0;
}

PruneOptions PruneCommand::Options() const
{
    PruneOptions options;
    options.Output = QString::fromStdString(Output);
    options.AppId = QString::fromStdString(AppId);
    options.DryRun = DryRun;
    if (Command->count("--keep") > 0)
        options.Keep = Keep;
    for (std::string const& build : Builds)
        options.Builds += QString::fromStdString(build);
    if (!options.Keep && options.Builds.isEmpty()) {
        throw Failure(QStringLiteral("--keep or --build is required: say which builds to remove"),
                      Failure::c_Usage);
    }
    return options;
}

void PruneCommand::PrintText(PruneSummary const& p_Summary) const
{
    using ConsoleText::PrintLine;
    QString const removed = DryRun ? QStringLiteral("Would remove") : QStringLiteral("Removed");
    for (QString const& build : p_Summary.Builds)
        PrintLine(QStringLiteral("%1 build %2").arg(removed, build));
    PrintLine(QStringLiteral("%1 %2 builds and %3 content files (%4 bytes), %5 builds stay")
                  .arg(removed)
                  .arg(p_Summary.Builds.size())
                  .arg(p_Summary.ContentFiles)
                  .arg(p_Summary.ContentBytes)
                  .arg(p_Summary.KeptBuilds));
}

void PruneCommand::PrintJson(PruneSummary const& p_Summary) const
{
    for (QString const& build : p_Summary.Builds) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("removed")},
                                {QStringLiteral("build"), build}});
    }
    ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("prune")},
                            {QStringLiteral("dryRun"), DryRun},
                            {QStringLiteral("removedBuilds"), p_Summary.Builds.size()},
                            {QStringLiteral("keptBuilds"), p_Summary.KeptBuilds},
                            {QStringLiteral("contentFiles"), p_Summary.ContentFiles},
                            {QStringLiteral("contentBytes"), p_Summary.ContentBytes}});
}

} // namespace Varnholt::Publisher
