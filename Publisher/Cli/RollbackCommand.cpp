#include "Publisher/Cli/RollbackCommand.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Publication/BuildRollback.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

RollbackCommand::RollbackCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("rollback", "Offer a build that is published already"))
{
    Command->footer("Example:\n"
                    "  varnholt-publish rollback --output /srv/www --build 18414\n"
                    "\n"
                    "Clients that hold a newer build fetch what differs. Every byte of the build\n"
                    "is read before it is offered.\n");
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    Command->add_option("--build", Build, "The build to offer")->required();
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Command->add_flag("--dev", Dev, "On the development channel");
    Command->add_flag("--quick", Quick, "Look only whether the build's files are there");
    Signing.AddTo(*Command);
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool RollbackCommand::IsChosen() const
{
    return Command->parsed();
}

int RollbackCommand::Run() const
{
    RollbackOptions const options{QString::fromStdString(Output),
                                  QString::fromStdString(AppId),
                                  QString::fromStdString(Build),
                                  Dev,
                                  Quick,
                                  Signing.Options()};
    QString before;
    {
        BuildProgress progress(Json);
        before = RollBack(options, &progress);
    }
    QString const channel = Dev ? QStringLiteral("dev") : QStringLiteral("live");
    if (Json) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("rollback")},
                                {QStringLiteral("channel"), channel},
                                {QStringLiteral("build"), options.Build},
                                {QStringLiteral("before"), before}});
        return 0;
    }
    QString const was = before.isNull() ? QStringLiteral("none") : before;
    ConsoleText::PrintLine(QStringLiteral("The channel %1 offers build %2 (before: %3)")
                               .arg(channel, options.Build, was));
    return 0;
}

} // namespace Varnholt::Publisher
