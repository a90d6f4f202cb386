#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/SigningArguments.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

namespace {

class SignCommand : public Command {
public:
    explicit SignCommand(CLI::App& p_Program);

    int Run() const override;

private:
    SigningArguments Signing;
};

SignCommand::SignCommand(CLI::App& p_Program)
    : Command(p_Program, "sign", "Sign what a tree holds, as it is",
              "Example:\n"
              "  varnholt-publish sign --output /srv/www --sign-key game.key --expires 30\n"
              "\n"
              "Begins to sign a tree, and renews signatures before they expire. It vouches\n"
              "for whatever lies there: \"verify\" tells beforehand what has no good\n"
              "signature.\n")
{
    AddOutput()->required();
    AddAppId();
    Signing.AddTo(Words, SigningArguments::Kind::Signing);
    AddJson();
}

int SignCommand::Run() const
{
    QString const output = Output();
    QString const appId = AppId();
    TreeMark(output).CheckIsTree();
    BuildCatalog(output, appId).CheckIsPublished();
    SigningOptions const options = Signing.Options();
    TreeTransaction tree(output);
    TreeSigner signer(output, appId, options);
    signer.CommitAll(tree);
    QString const key = options.Key->Public().KeyId();
    QString const number = QString::number(signer.Sequence());
    Tell(QStringLiteral("%1: signed %2 files with the key %3 as change %4")
             .arg(output, QString::number(signer.Count()), key, number),
         {{QStringLiteral("type"), QStringLiteral("sign")},
          {QStringLiteral("output"), output},
          {QStringLiteral("key"), key},
          {QStringLiteral("sequence"), number},
          {QStringLiteral("signatures"), signer.Count()}});
    return 0;
}

} // namespace

std::unique_ptr<Command> MakeSignCommand(CLI::App& p_Program)
{
    return std::make_unique<SignCommand>(p_Program);
}

} // namespace Varnholt::Publisher
