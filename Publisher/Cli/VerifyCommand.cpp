#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Cli/KeyFiles.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/SignatureRecord.hpp"
#include "Publisher/Verification/ServerVerification.hpp"
#include "Publisher/Verification/TreeRepair.hpp"
#include "Publisher/Verification/TreeVerification.hpp"
#include "Publisher/Verification/VerificationSummary.hpp"

#include <CLI/CLI.hpp>
#include <QJsonArray>

namespace Varnholt::Publisher {

namespace {

QString TextOf(VerificationSummary const& p_Summary)
{
    QString const builds = p_Summary.Builds.isEmpty() ? QStringLiteral("none")
                                                      : p_Summary.Builds.join(QStringLiteral(", "));
    QString const servers = p_Summary.Servers.isEmpty()
                                ? QString()
                                : QStringLiteral(" on %1 servers").arg(p_Summary.Servers.size());
    QString const signatures = p_Summary.Signatures > 0
                                   ? QStringLiteral("%1 signatures, ").arg(p_Summary.Signatures)
                                   : QString();
    return QStringLiteral("Builds %1: %2 files looked at%3, %4 of them read, %5%6 defects")
        .arg(builds)
        .arg(p_Summary.Files)
        .arg(servers)
        .arg(p_Summary.FilesRead)
        .arg(signatures)
        .arg(p_Summary.Defects.size());
}

QJsonObject ObjectOf(VerificationSummary const& p_Summary)
{
    return {{QStringLiteral("type"), QStringLiteral("verify")},
            {QStringLiteral("builds"), QJsonArray::fromStringList(p_Summary.Builds)},
            {QStringLiteral("servers"), QJsonArray::fromStringList(p_Summary.Servers)},
            {QStringLiteral("files"), p_Summary.Files},
            {QStringLiteral("filesRead"), p_Summary.FilesRead},
            {QStringLiteral("signatures"), p_Summary.Signatures},
            {QStringLiteral("defects"), p_Summary.Defects.size()}};
}

class VerifyCommand : public Command {
public:
    explicit VerifyCommand(CLI::App& p_Program);

    int Run() const override;

private:
    VerificationSummary Verify() const;

    std::string Url;
    int Sample = 20;
    bool ReadsAll = false;
    bool Repairs = false;
    std::string Source;
    std::string TrustKey;
};

VerifyCommand::VerifyCommand(CLI::App& p_Program)
    : Command(p_Program, "verify", "Look whether clients get what was published",
              "Examples:\n"
              "  varnholt-publish verify --output /srv/www\n"
              "  varnholt-publish verify --url http://content.example.net/ --all\n"
              "\n"
              "With --output every content file of the builds that the version files name\n"
              "is read. With --url the server, and each mirror of its host list, is asked\n"
              "for the manifests and for the size of every file; a sample, or with --all\n"
              "each file, is read whole and its end once more as a range.\n"
              "With --repair content that is missing or damaged is written anew from the same\n"
              "file of a source folder; what is told is what was found after that.\n"
              "With a key the signatures are looked at too, and whether they have expired.\n"
              "Each defect is one sentence on standard error; the exit status is then 1.\n")
{
    auto* const output = AddOutput("Folder of a published tree");
    auto* const url = Words.add_option("--url", Url, "Address of the default content server");
    output->excludes(url);
    auto* const source =
        Words.add_option("--source", Source, "Folder that holds the game, to repair from");
    Words.add_flag("--repair", Repairs, "Write damaged content anew")->needs(output)->needs(source);
    auto* const sample = Words.add_option("--sample", Sample, "Files to read whole on each server")
                             ->check(CLI::Range(0, 1'000'000))
                             ->needs(url)
                             ->capture_default_str();
    Words.add_flag("--all", ReadsAll, "Read every file whole on each server")
        ->needs(url)
        ->excludes(sample);
    Words.add_option("--trust-key", TrustKey,
                     "Public key, or a file of it, that all must be signed with (default: the "
                     "one that signs the tree of --output)");
    AddJson();
    AddAppId();
}

int VerifyCommand::Run() const
{
    VerificationSummary const summary = Verify();
    for (QString const& defect : summary.Defects) {
        if (WantsJson())
            ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("defect")},
                                    {QStringLiteral("text"), defect}});
        else
            ConsoleText::PrintErrorLine(QStringLiteral("varnholt-publish: ") + defect);
    }
    Tell(TextOf(summary), ObjectOf(summary));
    return summary.Defects.isEmpty() ? 0 : Failure::c_Other;
}

VerificationSummary VerifyCommand::Verify() const
{
    QString const appId = AppId();
    QList<Signing::PublicKey> keys;
    if (!TrustKey.empty())
        keys += KeyFiles::Public(QString::fromStdString(TrustKey));
    if (!Url.empty()) {
        return VerifyServers({QString::fromStdString(Url), appId, Sample, ReadsAll, keys});
    }
    if (Output().isEmpty())
        throw Failure(QStringLiteral("verify: give --output or --url"), Failure::c_Usage);
    QString const output = Output();
    SignatureRecord const record(output);
    if (keys.isEmpty() && record.IsSigned())
        keys += *record.SigningKey();
    DocumentCheck const check(keys, appId);
    BuildProgress progress(WantsJson());
    if (Repairs)
        return RepairTree(output, appId, QString::fromStdString(Source), progress, check);
    BuildCatalog const tree(output, appId);
    tree.CheckIsPublished();
    return VerifyTree(tree, &progress, check);
}

} // namespace

std::unique_ptr<Command> MakeVerifyCommand(CLI::App& p_Program)
{
    return std::make_unique<VerifyCommand>(p_Program);
}

} // namespace Varnholt::Publisher
