#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/BuildPruning.hpp"

#include <CLI/CLI.hpp>

#include <limits>

namespace Varnholt::Publisher {

namespace {

class PruneCommand : public Command {
public:
    explicit PruneCommand(CLI::App& p_Program);

    int Run() const override;

private:
    PruneOptions Options() const;

    int Keep = 0;
    std::vector<std::string> Builds;
    bool DryRun = false;
};

PruneCommand::PruneCommand(CLI::App& p_Program)
    : Command(p_Program, "prune", "Remove old builds and what only they use",
              "Examples:\n"
              "  varnholt-publish prune --output /srv/www --keep 3\n"
              "  varnholt-publish prune --output /srv/www --build 18000 --build 18100\n"
              "\n"
              "A build that a channel offers stays in any case. Content that no remaining\n"
              "build uses is removed too, also what an interrupted run has left.\n")
{
    AddOutput()->required();
    CLI::Option* const keep =
        Words.add_option("--keep", Keep, "Remove all but so many of the newest builds")
            ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    Words.add_option("--build", Builds, "Remove these builds")->excludes(keep);
    AddAppId();
    Words.add_flag("--dry-run", DryRun, "Only tell what would be removed");
    AddJson();
}

int PruneCommand::Run() const
{
    PruneOptions const options = Options();
    PruneSummary const summary = PruneBuilds(options);
    QString const removed = DryRun ? QStringLiteral("Would remove") : QStringLiteral("Removed");
    for (QString const& build : summary.Builds) {
        Tell(QStringLiteral("%1 build %2").arg(removed, build),
             {{QStringLiteral("type"), QStringLiteral("removed")},
              {QStringLiteral("build"), build}});
    }
    Tell(QStringLiteral("%1 %2 builds and %3 content files (%4 bytes), %5 builds stay")
             .arg(removed)
             .arg(summary.Builds.size())
             .arg(summary.ContentFiles)
             .arg(summary.ContentBytes)
             .arg(summary.KeptBuilds),
         {{QStringLiteral("type"), QStringLiteral("prune")},
          {QStringLiteral("dryRun"), DryRun},
          {QStringLiteral("removedBuilds"), summary.Builds.size()},
          {QStringLiteral("keptBuilds"), summary.KeptBuilds},
          {QStringLiteral("contentFiles"), summary.ContentFiles},
          {QStringLiteral("contentBytes"), summary.ContentBytes}});
    return 0;
}

PruneOptions PruneCommand::Options() const
{
    PruneOptions options;
    options.Output = Output();
    options.AppId = AppId();
    options.DryRun = DryRun;
    if (Words.count("--keep") > 0)
        options.Keep = Keep;
    for (std::string const& build : Builds)
        options.Builds += QString::fromStdString(build);
    if (!options.Keep && options.Builds.isEmpty()) {
        throw Failure(QStringLiteral("--keep or --build is required: say which builds to remove"),
                      Failure::c_Usage);
    }
    return options;
}

} // namespace

std::unique_ptr<Command> MakePruneCommand(CLI::App& p_Program)
{
    return std::make_unique<PruneCommand>(p_Program);
}

} // namespace Varnholt::Publisher
