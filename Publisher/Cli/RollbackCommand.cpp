#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/SigningArguments.hpp"
#include "Publisher/Publication/BuildRollback.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

namespace {

class RollbackCommand : public Command {
public:
    explicit RollbackCommand(CLI::App& p_Program);

    int Run() const override;

private:
    std::string Build;
    bool Dev = false;
    bool Quick = false;
    SigningArguments Signing;
};

RollbackCommand::RollbackCommand(CLI::App& p_Program)
    : Command(p_Program, "rollback", "Offer a build that is published already",
              "Example:\n"
              "  varnholt-publish rollback --output /srv/www --build 18414\n"
              "\n"
              "Clients that hold a newer build fetch what differs. Every byte of the build\n"
              "is read before it is offered.\n")
{
    AddOutput()->required();
    Words.add_option("--build", Build, "The build to offer")->required();
    AddAppId();
    Words.add_flag("--dev", Dev, "On the development channel");
    Words.add_flag("--quick", Quick, "Look only whether the build's files are there");
    Signing.AddTo(Words);
    AddJson();
}

int RollbackCommand::Run() const
{
    RollbackOptions const options{Output(), AppId(), QString::fromStdString(Build),
                                  Dev,      Quick,   Signing.Options()};
    QString before;
    {
        BuildProgress progress(WantsJson());
        before = RollBack(options, &progress);
    }
    QString const channel = Dev ? QStringLiteral("dev") : QStringLiteral("live");
    Tell(QStringLiteral("The channel %1 offers build %2 (before: %3)")
             .arg(channel, options.Build, before.isNull() ? QStringLiteral("none") : before),
         {{QStringLiteral("type"), QStringLiteral("rollback")},
          {QStringLiteral("channel"), channel},
          {QStringLiteral("build"), options.Build},
          {QStringLiteral("before"), before}});
    return 0;
}

} // namespace

std::unique_ptr<Command> MakeRollbackCommand(CLI::App& p_Program)
{
    return std::make_unique<RollbackCommand>(p_Program);
}

} // namespace Varnholt::Publisher
