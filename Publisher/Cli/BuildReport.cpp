#include "Publisher/Cli/BuildReport.hpp"

#include "Publisher/Cli/ConsoleText.hpp"

namespace Varnholt::Publisher {

BuildReport::BuildReport(PublishOptions const& p_Options, PublicationSummary const& p_Summary)
    : Options(p_Options)
    , Summary(p_Summary)
{
}

void BuildReport::PrintText() const
{
    using namespace ConsoleText;
    PrintHeading();
    PrintLine(QStringLiteral("files        %1 (%2 streamed)")
                  .arg(QString::number(Summary.Files), QString::number(Summary.StreamedFiles)));
    PrintLine(QStringLiteral("bytes        %1").arg(Summary.Bytes));
    PrintLine(
        QStringLiteral("from index   %1 bytes in %2 files")
            .arg(QString::number(Summary.IndexedBytes), QString::number(Summary.IndexedFiles)));
    PrintLine(QStringLiteral("new content  %1 bytes in %2 files")
                  .arg(QString::number(Summary.NewContentBytes),
                       QString::number(Summary.NewContentFiles)));
    PrintLine(QStringLiteral("rate         %1/s (%2 s)")
                  .arg(Bytes(BytesPerSecond()),
                       QString::number(static_cast<double>(Summary.Milliseconds) / 1000, 'f', 1)));
}

void BuildReport::PrintHeading() const
{
    using ConsoleText::PrintLine;
    if (!Summary.UnchangedBuild.isNull()) {
        PrintLine(QStringLiteral("Nothing to publish: build %1 in %2 equals the source")
                      .arg(Summary.UnchangedBuild, Options.Output));
        return;
    }
    for (TreeFile const& file : Summary.WouldWrite) {
        PrintLine(QStringLiteral("would write  %1 (%2 bytes)")
                      .arg(file.Path, QString::number(file.Bytes)));
    }
    PrintLine((Options.DryRun ? QStringLiteral("Would publish build %1 in %2")
                              : QStringLiteral("Published build %1 in %2"))
                  .arg(Options.Build.Id, Options.Output));
}

void BuildReport::PrintJson() const
{
    using ConsoleText::PrintJson;
    for (TreeFile const& file : Summary.WouldWrite) {
        PrintJson({{QStringLiteral("type"), QStringLiteral("write")},
                   {QStringLiteral("file"), file.Path},
                   {QStringLiteral("bytes"), file.Bytes}});
    }
    bool const isUnchanged = !Summary.UnchangedBuild.isNull();
    PrintJson({{QStringLiteral("type"), QStringLiteral("build")},
               {QStringLiteral("build"), isUnchanged ? Summary.UnchangedBuild : Options.Build.Id},
               {QStringLiteral("output"), Options.Output},
               {QStringLiteral("published"), !isUnchanged && !Options.DryRun},
               {QStringLiteral("unchanged"), isUnchanged},
               {QStringLiteral("files"), Summary.Files},
               {QStringLiteral("streamedFiles"), Summary.StreamedFiles},
               {QStringLiteral("bytes"), Summary.Bytes},
               {QStringLiteral("indexedFiles"), Summary.IndexedFiles},
               {QStringLiteral("indexedBytes"), Summary.IndexedBytes},
               {QStringLiteral("newContentFiles"), Summary.NewContentFiles},
               {QStringLiteral("newContentBytes"), Summary.NewContentBytes},
               {QStringLiteral("milliseconds"), Summary.Milliseconds},
               {QStringLiteral("bytesPerSecond"), BytesPerSecond()}});
}

qint64 BuildReport::BytesPerSecond() const
{
    return Summary.Bytes * 1000 / qMax<qint64>(1, Summary.Milliseconds);
}

} // namespace Varnholt::Publisher
