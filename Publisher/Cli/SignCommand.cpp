#include "Publisher/Cli/SignCommand.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/PublishedTree.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

SignCommand::SignCommand(CLI::App& p_Program)
    : Command(p_Program.add_subcommand("sign", "Sign what a tree holds, as it is"))
{
    Command->footer("Example:\n"
                    "  varnholt-publish sign --output /srv/www --sign-key game.key --expires 30\n"
                    "\n"
                    "Begins to sign a tree, and renews signatures before they expire. It vouches\n"
                    "for whatever lies there: \"verify\" tells beforehand what has no good\n"
                    "signature.\n");
    Command->add_option("--output", Output, "Folder of the published tree")->required();
    Command->add_option("--app-id", AppId, "Application identifier")->capture_default_str();
    Signing.AddTo(*Command, SigningArguments::Kind::Signing);
    Command->add_flag("--json", Json, "One JSON object per line");
}

bool SignCommand::IsChosen() const
{
    return Command->parsed();
}

int SignCommand::Run() const
{
    QString const output = QString::fromStdString(Output);
    QString const appId = QString::fromStdString(AppId);
    TreeMark(output).CheckIsTree();
    PublishedTree const published(output,
                                  appId); // refuses an application that was never published there
    SigningOptions const options = Signing.Options();
    TreeTransaction tree(output);
    TreeSigner signer(output, appId, options);
    signer.CommitAll(tree);
    QString const key = options.Key->Public().KeyId();
    if (Json) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("sign")},
                                {QStringLiteral("output"), output},
                                {QStringLiteral("key"), key},
                                {QStringLiteral("sequence"), QString::number(signer.Sequence())},
                                {QStringLiteral("signatures"), signer.Count()}});
        return 0;
    }
    ConsoleText::PrintLine(
        QStringLiteral("%1: signed %2 files with the key %3 as change %4")
            .arg(output, QString::number(signer.Count()), key, QString::number(signer.Sequence())));
    return 0;
}

} // namespace Varnholt::Publisher
