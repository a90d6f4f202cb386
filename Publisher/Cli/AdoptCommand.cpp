#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/KeyFiles.hpp"
#include "Publisher/Publication/TreeAdoption.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

namespace {

class AdoptCommand : public Command {
public:
    explicit AdoptCommand(CLI::App& p_Program);

    int Run() const override;

private:
    std::string TrustKey;
};

AdoptCommand::AdoptCommand(CLI::App& p_Program)
    : Command(p_Program, "adopt", "Go on publishing in a copy of a published tree",
              "Example, on a mirror, when the publisher's machine is lost:\n"
              "  varnholt-publish adopt --output /srv/www\n"
              "\n"
              "Every byte that the channels offer is read before. Then build, rollback and\n"
              "prune work there as they did in the tree that was copied.\n")
{
    AddOutput("Folder of the copy")->required();
    AddAppId();
    Words.add_option("--trust-key", TrustKey, "Public key of a signed copy, or a file of it");
    AddJson();
}

int AdoptCommand::Run() const
{
    {
        BuildProgress progress(WantsJson());
        std::optional<Signing::PublicKey> key;
        if (!TrustKey.empty())
            key = KeyFiles::Public(QString::fromStdString(TrustKey));
        AdoptTree(Output(), AppId(), key, progress);
    }
    Tell(Output() + QStringLiteral(" is a published tree now"),
         {{QStringLiteral("type"), QStringLiteral("adopt")}, {QStringLiteral("output"), Output()}});
    return 0;
}

} // namespace

std::unique_ptr<Command> MakeAdoptCommand(CLI::App& p_Program)
{
    return std::make_unique<AdoptCommand>(p_Program);
}

} // namespace Varnholt::Publisher
