#include "Publisher/Cli/BuildReport.hpp"

#include "Publisher/Cli/ConsoleText.hpp"

namespace Varnholt::Publisher::BuildReport {

namespace {

qint64 BytesPerSecond(PublicationSummary const& p_Summary)
{
    return p_Summary.Bytes * 1000 / qMax<qint64>(1, p_Summary.Milliseconds);
}

void PrintHeading(PublishOptions const& p_Options, PublicationSummary const& p_Summary)
{
    using ConsoleText::PrintLine;
    if (!p_Summary.UnchangedBuild.isNull()) {
        PrintLine(QStringLiteral("Nothing to publish: build %1 in %2 equals the source")
                      .arg(p_Summary.UnchangedBuild, p_Options.Output));
        return;
    }
    for (TreeFile const& file : p_Summary.WouldWrite) {
        PrintLine(QStringLiteral("would write  %1 (%2 bytes)")
                      .arg(file.Path, QString::number(file.Bytes)));
    }
    PrintLine((p_Options.DryRun ? QStringLiteral("Would publish build %1 in %2")
                                : QStringLiteral("Published build %1 in %2"))
                  .arg(p_Options.Build.Id, p_Options.Output));
}

} // namespace

void PrintText(PublishOptions const& p_Options, PublicationSummary const& p_Summary)
{
    using namespace ConsoleText;
    PrintHeading(p_Options, p_Summary);
    PrintLine(QStringLiteral("files        %1 (%2 streamed)")
                  .arg(QString::number(p_Summary.Files), QString::number(p_Summary.StreamedFiles)));
    PrintLine(QStringLiteral("bytes        %1").arg(p_Summary.Bytes));
    PrintLine(
        QStringLiteral("from index   %1 bytes in %2 files")
            .arg(QString::number(p_Summary.IndexedBytes), QString::number(p_Summary.IndexedFiles)));
    PrintLine(QStringLiteral("new content  %1 bytes in %2 files")
                  .arg(QString::number(p_Summary.NewContentBytes),
                       QString::number(p_Summary.NewContentFiles)));
    PrintLine(
        QStringLiteral("rate         %1/s (%2 s)")
            .arg(Bytes(BytesPerSecond(p_Summary)),
                 QString::number(static_cast<double>(p_Summary.Milliseconds) / 1000, 'f', 1)));
}

void PrintJson(PublishOptions const& p_Options, PublicationSummary const& p_Summary)
{
    using ConsoleText::PrintJson;
    for (TreeFile const& file : p_Summary.WouldWrite) {
        PrintJson({{QStringLiteral("type"), QStringLiteral("write")},
                   {QStringLiteral("file"), file.Path},
                   {QStringLiteral("bytes"), file.Bytes}});
    }
    bool const isUnchanged = !p_Summary.UnchangedBuild.isNull();
    PrintJson(
        {{QStringLiteral("type"), QStringLiteral("build")},
         {QStringLiteral("build"), isUnchanged ? p_Summary.UnchangedBuild : p_Options.Build.Id},
         {QStringLiteral("output"), p_Options.Output},
         {QStringLiteral("published"), !isUnchanged && !p_Options.DryRun},
         {QStringLiteral("unchanged"), isUnchanged},
         {QStringLiteral("files"), p_Summary.Files},
         {QStringLiteral("streamedFiles"), p_Summary.StreamedFiles},
         {QStringLiteral("bytes"), p_Summary.Bytes},
         {QStringLiteral("indexedFiles"), p_Summary.IndexedFiles},
         {QStringLiteral("indexedBytes"), p_Summary.IndexedBytes},
         {QStringLiteral("newContentFiles"), p_Summary.NewContentFiles},
         {QStringLiteral("newContentBytes"), p_Summary.NewContentBytes},
         {QStringLiteral("milliseconds"), p_Summary.Milliseconds},
         {QStringLiteral("bytesPerSecond"), BytesPerSecond(p_Summary)}});
}

} // namespace Varnholt::Publisher::BuildReport
