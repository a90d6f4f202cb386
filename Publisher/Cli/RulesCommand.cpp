#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/BuildProgress.hpp"
#include "Publisher/Cli/LocaleOption.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Rules/FlagNames.hpp"
#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Source/SourceListing.hpp"

#include <CLI/CLI.hpp>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <vector>

namespace Varnholt::Publisher {

namespace {

struct Property {
    QString Name;
    QJsonValue Value;
    Rule const* Decided; ///< null: no rule did
};

std::vector<Property> PropertiesOf(FileTreatment const& p_Treatment, ContentPlatform p_Platform,
                                   RuleExplanation const& p_Decided = {})
{
    QStringList const flags = FlagNames::NamesOf(p_Treatment.Flags, p_Platform);
    return {{QStringLiteral("flags"), QJsonArray::fromStringList(flags), p_Decided.Flags},
            {QStringLiteral("locale"), p_Treatment.Locale, p_Decided.Locale},
            {QStringLiteral("streamed"), p_Treatment.Streamed, p_Decided.Streamed},
            {QStringLiteral("exclude"), p_Treatment.Excluded, p_Decided.Excluded}};
}

QString TextOf(QJsonValue const& p_Value)
{
    if (p_Value.isBool())
        return p_Value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    QString const text = p_Value.isArray()
                             ? p_Value.toVariant().toStringList().join(QStringLiteral(", "))
                             : p_Value.toString();
    return text.isEmpty() ? QStringLiteral("none") : text;
}

QString PlaceOf(Rule const* p_Rule, QString const& p_File)
{
    if (!p_Rule)
        return QStringLiteral("no rule");
    QString const place = p_Rule->Line == 0
                              ? QStringLiteral("built-in rule")
                              : QStringLiteral("%1, line %2").arg(p_File).arg(p_Rule->Line);
    return QStringLiteral("%1: \"%2\"").arg(place, p_Rule->Pattern);
}

bool IsPlain(QJsonValue const& p_Value)
{
    return p_Value == QJsonValue(false) || p_Value == QJsonValue(QString()) ||
           p_Value == QJsonValue(QJsonArray());
}

class RulesCommand : public Command {
public:
    explicit RulesCommand(CLI::App& p_Program);

    int Run() const override;

private:
    PublishOptions Options() const;
    void ListFiles(RuleSet const& p_Rules) const;
    void Explain(RuleSet const& p_Rules) const;

    std::string Source;
    std::string Rules;
    std::string Path;
    std::string LocaleList;
    std::string Platform = "mac";
};

RulesCommand::RulesCommand(CLI::App& p_Program)
    : Command(p_Program, "rules", "Show what the rules make of a game folder",
              "Examples:\n"
              "  varnholt-publish rules --source Game --rules rules.json\n"
              "  varnholt-publish rules --source Game --rules rules.json \\\n"
              "      --explain Data/frFR/locale.MPQ\n"
              "\n"
              "Lists every file with its properties or, for one path, names the rule that\n"
              "decided each of them. Publishes nothing.\n")
{
    Words.add_option("--source", Source, "Folder that holds the game")->required();
    Words.add_option("--rules", Rules, "Rules file (JSON); without it built-in rules apply");
    Words.add_option("--explain", Path, "A file's path in the source folder");
    Words.add_option("--locales", LocaleList,
                     "Languages on offer, TAG=NAME,..., added to those of the rules file");
    Words.add_option("--platform", Platform, "System of the clients")
        ->check(CLI::IsMember({"mac", "win"}))
        ->capture_default_str();
    AddJson();
}

int RulesCommand::Run() const
{
    RuleSet const rules = SourceListing::ReadRules(Options());
    if (Words.count("--explain") > 0)
        Explain(rules);
    else
        ListFiles(rules);
    return 0;
}

PublishOptions RulesCommand::Options() const
{
    PublishOptions options;
    options.Source = QString::fromStdString(Source);
    options.RulesFile = QString::fromStdString(Rules);
    options.Platform = Platform == "win" ? ContentPlatform::Windows : ContentPlatform::Mac;
    if (Words.count("--locales") > 0)
        options.Locales = ParseLocales(QString::fromStdString(LocaleList));
    return options;
}

void RulesCommand::ListFiles(RuleSet const& p_Rules) const
{
    PublishOptions const options = Options();
    std::vector<BuildFile> files;
    {
        BuildProgress progress(WantsJson());
        files = SourceListing::AllFiles(options, p_Rules, progress);
    }
    for (BuildFile const& file : files) {
        QJsonObject object{{QStringLiteral("type"), QStringLiteral("file")},
                           {QStringLiteral("path"), file.Source.Path}};
        QStringList words;
        for (Property const& property : PropertiesOf(file.Treatment, options.Platform)) {
            object.insert(property.Name, property.Value);
            if (!IsPlain(property.Value))
                words += property.Name + QLatin1Char('=') + TextOf(property.Value);
        }
        Tell((QStringList(file.Source.Path) + words).join(QStringLiteral("  ")), object);
    }
}

void RulesCommand::Explain(RuleSet const& p_Rules) const
{
    PublishOptions const options = Options();
    if (Path.empty())
        throw Failure(QStringLiteral("--explain \"\": the path is empty"), Failure::c_Usage);
    QString const path = QDir::cleanPath(QString::fromStdString(Path));
    if (QDir::isAbsolutePath(path) || path.startsWith(QStringLiteral("../")) ||
        !QFileInfo(options.Source + QLatin1Char('/') + path).isFile())
        throw Failure(path + QStringLiteral(": the source folder holds no such file"));
    RuleExplanation const decided = p_Rules.Explain(path);
    for (Property const& property : PropertiesOf(decided.Treatment(), options.Platform, decided)) {
        QJsonObject object{{QStringLiteral("type"), QStringLiteral("property")},
                           {QStringLiteral("path"), path},
                           {QStringLiteral("property"), property.Name},
                           {QStringLiteral("value"), property.Value}};
        if (property.Decided)
            object.insert(QStringLiteral("match"), property.Decided->Pattern);
        if (property.Decided && property.Decided->Line > 0) {
            object.insert(QStringLiteral("file"), options.RulesFile);
            object.insert(QStringLiteral("line"), property.Decided->Line);
        }
        Tell(property.Name.leftJustified(10) + TextOf(property.Value) +
                 QStringLiteral("  (%1)").arg(PlaceOf(property.Decided, options.RulesFile)),
             object);
    }
}

} // namespace

std::unique_ptr<Command> MakeRulesCommand(CLI::App& p_Program)
{
    return std::make_unique<RulesCommand>(p_Program);
}

} // namespace Varnholt::Publisher
