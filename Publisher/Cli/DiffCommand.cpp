#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Publication/BuildDifference.hpp"
#include "Publisher/Rules/FlagNames.hpp"

#include <CLI/CLI.hpp>
#include <QJsonArray>
#include <QJsonObject>
#include <vector>

#include <array>
#include <optional>

namespace Varnholt::Publisher {

namespace {

using Change = FileDifference::Change;

/// What a client asks for before the first file: version, manifest, hosts, realm list.
constexpr int c_OpeningRequests = 4;
/// A client asks each file's size, then for the file.
constexpr int c_RequestsPerFile = 2;

/// So that their bytes can be counted whatever the game's size.
constexpr int c_MostPlayers = 10'000'000;

struct ChangeText {
    Change Kind;
    char const* Name;
    char const* Sign; ///< before the path; null: paths are not listed
};

constexpr std::array<ChangeText, 5> c_Changes{{
    {Change::New, "new", "+"},
    {Change::Changed, "changed", "~"},
    {Change::Altered, "altered", "="},
    {Change::Removed, "removed", "-"},
    {Change::Same, "same", nullptr},
}};

ChangeText const& TextOf(Change p_Kind)
{
    for (ChangeText const& text : c_Changes) {
        if (text.Kind == p_Kind)
            return text;
    }
    return c_Changes.back();
}

qint64 Requests(BuildDifference const& p_Difference)
{
    qint64 const files = p_Difference.Fetched(false).Files + p_Difference.Fetched(true).Files;
    return c_OpeningRequests + c_RequestsPerFile * files;
}

QString Figures(FileTotal const& p_Total)
{
    return QStringLiteral("%1 files, %2 bytes").arg(p_Total.Files).arg(p_Total.Bytes);
}

QStringList FlagsOf(PublishedFile const& p_File)
{
    bool const isForWindows =
        (p_File.Flags & FlagNames::GameExecutable(ContentPlatform::Windows)) != 0;
    return FlagNames::NamesOf(p_File.Flags,
                              isForWindows ? ContentPlatform::Windows : ContentPlatform::Mac);
}

/// ", locale frFR (was none)" for each property that is another than before.
QString Alterations(FileDifference const& p_File)
{
    QString text;
    auto const add = [&text](char const* p_Name, QString const& p_Now, QString const& p_Before) {
        auto const shown = [](QString const& p_Value) {
            return p_Value.isEmpty() ? QStringLiteral("none") : p_Value;
        };
        if (p_Now != p_Before) {
            text += QStringLiteral(", %1 %2 (was %3)")
                        .arg(QLatin1String(p_Name), shown(p_Now), shown(p_Before));
        }
    };
    if (!p_File.TreatedBefore)
        return text;
    auto const flags = [](PublishedFile const& p_Of) {
        return FlagsOf(p_Of).join(QStringLiteral(" and "));
    };
    auto const streamed = [](PublishedFile const& p_Of) {
        return p_Of.Streamed ? QStringLiteral("true") : QStringLiteral("false");
    };
    add("flags", flags(p_File.File), flags(*p_File.TreatedBefore));
    add("locale", p_File.File.Locale, p_File.TreatedBefore->Locale);
    add("streamed", streamed(p_File.File), streamed(*p_File.TreatedBefore));
    return text;
}

QJsonObject TreatmentOf(PublishedFile const& p_File)
{
    return {{QStringLiteral("flags"), QJsonArray::fromStringList(FlagsOf(p_File))},
            {QStringLiteral("locale"), p_File.Locale},
            {QStringLiteral("streamed"), p_File.Streamed}};
}

QJsonObject ObjectOf(FileTotal const& p_Total)
{
    return {{QStringLiteral("files"), p_Total.Files}, {QStringLiteral("bytes"), p_Total.Bytes}};
}

class DiffCommand : public Command {
public:
    explicit DiffCommand(CLI::App& p_Program);

    int Run() const override;

private:
    void PrintText(BuildDifference const& p_Difference) const;
    void PrintJson(BuildDifference const& p_Difference) const;

    std::vector<std::string> Builds;
    std::string Locale;
    int Players = 0;
};

DiffCommand::DiffCommand(CLI::App& p_Program)
    : Command(p_Program, "diff", "Show what clients fetch between two builds",
              "Example:\n"
              "  varnholt-publish diff --output /srv/www --locale enUS 18414 18500\n"
              "\n"
              "With one build only: what a new installation fetches.\n"
              "New files are marked with \"+\", changed ones with \"~\", those whose flags,\n"
              "language or streaming alone have changed with \"=\", removed ones, which clients\n"
              "leave where they are, with \"-\". A changed file that has the flag\n"
              "keep-if-present is not fetched by those who have it.\n")
{
    AddOutput()->required();
    Words.add_option("builds", Builds, "[OLD] NEW")->required()->expected(1, 2);
    Words.add_option("--locale", Locale,
                     "Count what a client of this language fetches (default: all languages)");
    Words.add_option("--players", Players, "Tell what so many clients fetch together")
        ->check(CLI::Range(1, c_MostPlayers));
    AddAppId();
    AddJson("One JSON object per line: each file, then a summary");
}

int DiffCommand::Run() const
{
    BuildCatalog const tree(Output(), AppId());
    tree.CheckIsPublished();
    std::optional<PublishedBuild> old;
    if (Builds.size() > 1)
        old = tree.ReadBuild(QString::fromStdString(Builds.front()));
    BuildDifference const difference(tree, old ? &*old : nullptr,
                                     tree.ReadBuild(QString::fromStdString(Builds.back())),
                                     QString::fromStdString(Locale));
    if (WantsJson())
        PrintJson(difference);
    else
        PrintText(difference);
    return 0;
}

void DiffCommand::PrintText(BuildDifference const& p_Difference) const
{
    using ConsoleText::PrintLine;
    for (FileDifference const& file : p_Difference.Files()) {
        char const* const sign = TextOf(file.Kind).Sign;
        if (sign) {
            PrintLine(QStringLiteral("%1 %2 %3 bytes%4")
                          .arg(QLatin1String(sign), file.File.Path, QString::number(file.Bytes),
                               Alterations(file)));
        }
    }
    for (ChangeText const& text : c_Changes) {
        PrintLine(QString::fromLatin1(text.Name).leftJustified(10) +
                  Figures(p_Difference.Total(text.Kind)));
    }
    FileTotal const base = p_Difference.Fetched(false);
    FileTotal const streamed = p_Difference.Fetched(true);
    qint64 const requests = Requests(p_Difference);
    PrintLine(QStringLiteral("To fetch by one client:"));
    PrintLine(QStringLiteral("base      ") + Figures(base));
    PrintLine(QStringLiteral("streamed  ") + Figures(streamed));
    PrintLine(QStringLiteral("requests  %1").arg(requests));
    if (Players > 0) {
        PrintLine(QStringLiteral("To fetch by %1 clients:").arg(Players));
        PrintLine(QStringLiteral("bytes     %1").arg((base.Bytes + streamed.Bytes) * Players));
        PrintLine(QStringLiteral("requests  %1").arg(requests * Players));
    }
}

void DiffCommand::PrintJson(BuildDifference const& p_Difference) const
{
    for (FileDifference const& file : p_Difference.Files()) {
        QJsonObject object{{QStringLiteral("type"), QStringLiteral("file")},
                           {QStringLiteral("change"), QLatin1String(TextOf(file.Kind).Name)},
                           {QStringLiteral("path"), file.File.Path},
                           {QStringLiteral("bytes"), file.Bytes},
                           {QStringLiteral("md5"), file.File.Md5},
                           {QStringLiteral("streamed"), file.File.Streamed},
                           {QStringLiteral("fetched"), file.IsFetched}};
        if (!file.File.Locale.isEmpty())
            object.insert(QStringLiteral("locale"), file.File.Locale);
        if (file.TreatedBefore) {
            object.insert(QStringLiteral("treated"), TreatmentOf(file.File));
            object.insert(QStringLiteral("treatedBefore"), TreatmentOf(*file.TreatedBefore));
        }
        ConsoleText::PrintJson(object);
    }
    FileTotal const base = p_Difference.Fetched(false);
    FileTotal const streamed = p_Difference.Fetched(true);
    QJsonObject summary{{QStringLiteral("type"), QStringLiteral("summary")},
                        {QStringLiteral("base"), ObjectOf(base)},
                        {QStringLiteral("streamed"), ObjectOf(streamed)},
                        {QStringLiteral("requests"), Requests(p_Difference)}};
    for (ChangeText const& text : c_Changes)
        summary.insert(QLatin1String(text.Name), ObjectOf(p_Difference.Total(text.Kind)));
    if (Players > 0) {
        // As text: a million times a game is more than a number of JSON holds exactly.
        summary.insert(QStringLiteral("players"), Players);
        summary.insert(QStringLiteral("playersBytes"),
                       QString::number((base.Bytes + streamed.Bytes) * Players));
        summary.insert(QStringLiteral("playersRequests"),
                       QString::number(Requests(p_Difference) * Players));
    }
    ConsoleText::PrintJson(summary);
}

} // namespace

std::unique_ptr<Command> MakeDiffCommand(CLI::App& p_Program)
{
    return std::make_unique<DiffCommand>(p_Program);
}

} // namespace Varnholt::Publisher
