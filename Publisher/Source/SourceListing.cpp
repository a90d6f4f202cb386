#include "Publisher/Source/SourceListing.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Rules/BuiltInRules.hpp"
#include "Publisher/Rules/FlagNames.hpp"
#include "Publisher/Rules/RuleSetReader.hpp"
#include "Publisher/Source/PathChecks.hpp"
#include "Publisher/Source/SourceScan.hpp"

#include <algorithm>
#include <functional>

namespace Varnholt::Publisher::SourceListing {

namespace {

using Excluded = std::function<void(QString const& p_Path, FileTreatment const& p_Treatment)>;

std::vector<BuildFile> Scan(PublishOptions const& p_Options, RuleSet const& p_Rules,
                            PublicationObserver& p_Observer, Excluded const& p_Excluded)
{
    std::vector<bool> fitting(p_Rules.Rules.size());
    auto const treat = [&](QString const& p_Path) {
        FileTreatment treatment = p_Rules.TreatmentOf(p_Path, &fitting);
        if (treatment.Excluded)
            p_Excluded(p_Path, treatment);
        return treatment;
    };
    std::vector<BuildFile> files = ScanSource(p_Options.Source, treat);
    for (BuildFile const& file : files)
        PathChecks::CheckPlatform(file.Source.Path, p_Options.Platform);
    for (std::size_t i = 0; i < fitting.size(); ++i) {
        Rule const& rule = p_Rules.Rules[i];
        if (!fitting[i] && rule.Line > 0) {
            p_Observer.Warned(
                QStringLiteral("%1, line %2: \"%3\" matches no file")
                    .arg(p_Options.RulesFile, QString::number(rule.Line), rule.Pattern));
        }
    }
    return files;
}

} // namespace

RuleSet ReadRules(PublishOptions const& p_Options)
{
    if (p_Options.RulesFile.isEmpty())
        return BuiltInRules(p_Options.Platform, p_Options.Locales);
    return ReadRuleSet(p_Options.RulesFile, p_Options.Platform, p_Options.Locales);
}

std::vector<BuildFile> PublishedFiles(PublishOptions const& p_Options, RuleSet const& p_Rules,
                                      PublicationObserver& p_Observer)
{
    return Scan(p_Options, p_Rules, p_Observer, [](QString const&, FileTreatment const&) {});
}

std::vector<BuildFile> AllFiles(PublishOptions const& p_Options, RuleSet const& p_Rules,
                                PublicationObserver& p_Observer)
{
    std::vector<BuildFile> excluded;
    auto const keep = [&](QString const& p_Path, FileTreatment const& p_Treatment) {
        BuildFile file;
        file.Source.Path = p_Path;
        file.Treatment = p_Treatment;
        excluded.push_back(file);
    };
    std::vector<BuildFile> files = Scan(p_Options, p_Rules, p_Observer, keep);
    files.insert(files.end(), excluded.begin(), excluded.end());
    std::sort(files.begin(), files.end(), [](BuildFile const& p_One, BuildFile const& p_Two) {
        return p_One.Source.Path.toUtf8() < p_Two.Source.Path.toUtf8();
    });
    return files;
}

void CheckGameExecutable(PublishOptions const& p_Options, std::vector<BuildFile> const& p_Files,
                         PublicationObserver& p_Observer)
{
    qint32 const flag = FlagNames::GameExecutable(p_Options.Platform);
    BuildFile const* found = nullptr;
    for (BuildFile const& file : p_Files) {
        if ((file.Treatment.Flags & flag) == 0)
            continue;
        if (file.Treatment.Streamed) {
            throw Failure(file.Source.Path +
                          QStringLiteral(": the game's executable must not be streamed"));
        }
        if (found) {
            throw Failure(QStringLiteral("%1 and %2 both have the flag game-executable: a build "
                                         "has exactly one")
                              .arg(found->Source.Path, file.Source.Path));
        }
        found = &file;
    }
    if (!found) {
        throw Failure(p_Options.Source +
                      QStringLiteral(": no file has the flag game-executable: give it to the "
                                     "game's executable in the rules file"));
    }
    auto const executable = Launcher::ApplicationManifestFileEntry::Executable;
    if (p_Options.Platform == ContentPlatform::Mac && (found->Treatment.Flags & executable) == 0) {
        p_Observer.Warned(found->Source.Path +
                          QStringLiteral(": the game's executable has no flag executable, so "
                                         "clients cannot start it"));
    }
}

} // namespace Varnholt::Publisher::SourceListing
