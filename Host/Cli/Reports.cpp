#include "Host/Cli/Reports.hpp"

#include "Host/Cli/ProgressText.hpp"
#include "Host/Core/Failures/ByteText.hpp"

#include <QImageReader>

#include <algorithm>

namespace Varnholt::Host::Reports {

namespace {

using Rows = QVector<QPair<QString, QString>>;

QStringList Table(Rows const& p_Rows)
{
    int width = 0;
    for (auto const& row : p_Rows)
        width = std::max(width, row.first.size());
    QStringList lines;
    for (auto const& row : p_Rows)
        lines += row.first.left(1).toUpper() +
                 (row.first.mid(1) + QLatin1Char(':')).leftJustified(width + 1) + row.second;
    return lines;
}

QString ImageText(QString const& p_Path)
{
    QSize const size = QImageReader(p_Path).size();
    return size.isValid()
               ? QStringLiteral("%1 (%2 x %3)").arg(p_Path).arg(size.width()).arg(size.height())
               : QStringLiteral("%1 (not an image)").arg(p_Path);
}

QString FetchSummary(RunRequest const& p_Request, RunResult const& p_Result, QString const& p_Name)
{
    return QStringLiteral("%1, build %2, is complete in %3 (%4)")
        .arg(p_Name, p_Result.BuildText(), p_Result.Folder, Totals(p_Request, p_Result.Totals));
}

QString InstallSummary(RunResult const& p_Result, QString const& p_Name)
{
    return QStringLiteral("an installation of %1, build %2, into %3 fetches %4")
        .arg(p_Name, p_Result.BuildText(), p_Result.Folder, AmountText(p_Result.Amount));
}

QString StartSummary(RunResult const& p_Result, QString const& p_Name)
{
    QString const started =
        QStringLiteral("%1 was started as process %2").arg(p_Name).arg(p_Result.ProcessId);
    return p_Result.OutputFile.isEmpty()
               ? started
               : QStringLiteral("%1; its output goes to %2").arg(started, p_Result.OutputFile);
}

QStringList Languages(RunResult const& p_Result)
{
    QStringList lines;
    for (auto const& locale : p_Result.Locales)
        lines += QStringLiteral("%1 %2  %3")
                     .arg(locale.Tag == p_Result.Locale ? QStringLiteral("*") : QStringLiteral(" "),
                          locale.Tag, locale.Name);
    return lines;
}

/// What a run that had to bring files has given up. Of a single one the failure tells all.
QStringList GivenUp(std::vector<FileFinding> const& p_Findings)
{
    constexpr std::size_t c_MostTold = 20;

    QStringList lines;
    if (p_Findings.size() < 2)
        return lines;
    for (std::size_t i = 0; i < std::min(p_Findings.size(), c_MostTold); ++i) {
        Failure const& problem = p_Findings[i].Problem;
        lines += QStringLiteral("%1: %2; %3")
                     .arg(p_Findings[i].Path, problem.Sentence(), problem.Remedy());
    }
    if (p_Findings.size() > c_MostTold)
        lines += QStringLiteral("and %1 more").arg(p_Findings.size() - c_MostTold);
    return lines;
}

/// "A download runs: process 4711, 43 %, 12.3 MiB/s".
QString DownloadText(RunningHost const& p_Download)
{
    RunSnapshot const& snapshot = p_Download.Snapshot;
    QStringList parts{QStringLiteral("process %1").arg(p_Download.ProcessId)};
    if (!IsDownloading(snapshot.Phase))
        parts += PhaseText(snapshot.Phase);
    if (QString const percent = ProgressText::Percent(snapshot); !percent.isEmpty())
        parts += percent;
    if (snapshot.Rate > 0)
        parts += QStringLiteral("%1/s").arg(ByteText(snapshot.Rate));
    return QStringLiteral("A download runs: ") + parts.join(QStringLiteral(", "));
}

} // namespace

QStringList Info(ModuleInfo const& p_Info)
{
    Rows rows{{QStringLiteral("Module"), p_Info.File},
              {QStringLiteral("Game"), p_Info.Name},
              {QStringLiteral("Identifier"), p_Info.AppId},
              {QStringLiteral("Plug-in"), p_Info.MetaDataName},
              {QStringLiteral("Version"), p_Info.Version},
              {QStringLiteral("Documents"),
               p_Info.TrustKey.isEmpty() ? QStringLiteral("unsigned")
                                         : QStringLiteral("signed by the key ") + p_Info.TrustKey}};
    rows += p_Info.Presentation;
    for (auto const& image : p_Info.Images)
        rows.append({image.first, ImageText(image.second)});
    return Table(rows);
}

QStringList Status(InstallStatus const& p_Status)
{
    if (!p_Status.IsInstalled)
        return {QStringLiteral("%1 is not installed").arg(p_Status.Name)};
    QString state = QStringLiteral("complete");
    if (p_Status.Download)
        state = QStringLiteral("not complete yet");
    else if (!p_Status.FolderExists)
        state = QStringLiteral(
            "its folder does not exist; \"install\" with the folder that it was moved "
            "to takes it over");
    else if (p_Status.IsUnfinished)
        state = QStringLiteral("not complete; \"update\" fetches the rest");
    else if (p_Status.Build.isEmpty())
        state = QStringLiteral("not known; \"update\" looks at it");
    Rows rows{{QStringLiteral("Game"), p_Status.Name},
              {QStringLiteral("Folder"), p_Status.Folder},
              {QStringLiteral("State"), state},
              {QStringLiteral("Language"), p_Status.Locale}};
    if (!p_Status.Build.isEmpty())
        rows.append({QStringLiteral("Last complete build"), p_Status.Build});
    if (int const pending = p_Status.PendingBase + p_Status.PendingStreamed)
        rows.append({QStringLiteral("Listed as pending"),
                     FileCountText(static_cast<std::size_t>(pending))});
    QStringList lines = Table(rows);
    if (p_Status.Download)
        lines += DownloadText(*p_Status.Download);
    return lines;
}

QString Space(VolumeSpace const& p_Space)
{
    auto const text = [](qint64 p_Bytes) {
        return ByteText(static_cast<quint64>(std::max<qint64>(0, p_Bytes)));
    };
    QString needed = QStringLiteral("%1%2 are needed on the volume of %3")
                         .arg(p_Space.Unsized > 0 ? QStringLiteral("at least ") : QString(),
                              text(p_Space.Needed), p_Space.Folder);
    if (!p_Space.IsKnown())
        return needed;
    return p_Space.After() < 0
               ? QStringLiteral("%1; only %2 are free").arg(needed, text(p_Space.Free))
               : QStringLiteral("%1; %2 are free, %3 stay free")
                     .arg(needed, text(p_Space.Free), text(p_Space.After()));
}

QStringList Findings(RunRequest const& p_Request, RunResult const& p_Result)
{
    constexpr int c_CauseWidth = 10;
    constexpr int c_SizeWidth = 10;

    QStringList lines;
    if (!p_Request.IsInspection())
        lines = GivenUp(p_Result.Findings);
    else
        for (FileFinding const& finding : p_Result.Findings) {
            QString const size =
                finding.Bytes < 0 ? QString() : ByteText(static_cast<quint64>(finding.Bytes));
            lines += finding.CauseText().leftJustified(c_CauseWidth) +
                     size.rightJustified(c_SizeWidth) + QStringLiteral("  ") + finding.Path;
        }
    for (MirrorReport const& report : p_Result.Mirrors) {
        QString const state = report.IsInOrder()
                                  ? QStringLiteral("in order, %1 ms").arg(report.Milliseconds)
                                  : report.Cause;
        lines += QStringLiteral("%1  %2").arg(report.Host, state);
    }
    for (Failure const& warning : p_Result.Warnings)
        lines += QStringLiteral("warning: %1; %2").arg(warning.Sentence(), warning.Remedy());
    return lines;
}

QString Totals(RunRequest const& p_Request, RunTotals const& p_Totals)
{
    constexpr qint64 c_Second = 1'000;

    bool const compares = p_Request.IsInspection();
    QString const took = ProgressText::Duration((p_Totals.Milliseconds + c_Second / 2) / c_Second);
    if (p_Totals.Files == 0)
        return (compares ? QStringLiteral("no file had to be compared; it took %1")
                         : QStringLiteral("nothing had to be fetched; it took %1"))
            .arg(took);
    QString const text = QStringLiteral("%1 %2: %3 in %4")
                             .arg(FileCountText(p_Totals.Files),
                                  compares ? QStringLiteral("compared") : QStringLiteral("fetched"),
                                  ByteText(p_Totals.Bytes), took);
    return p_Totals.Rate == 0
               ? text
               : text + QStringLiteral(", %1/s on average").arg(ByteText(p_Totals.Rate));
}

QStringList Success(RunRequest const& p_Request, RunResult const& p_Result, QString const& p_Name)
{
    switch (p_Request.Kind) {
    case RunRequest::Type::Install:
    case RunRequest::Type::Update:
    case RunRequest::Type::Repair:
        return {FetchSummary(p_Request, p_Result, p_Name)};
    case RunRequest::Type::Check:
        return {p_Request.Quick
                    ? QStringLiteral("%1, build %2, is the current build; its files were not "
                                     "looked at")
                          .arg(p_Name, p_Result.BuildText())
                    : QStringLiteral("%1, build %2, is up to date (%3)")
                          .arg(p_Name, p_Result.BuildText(), Totals(p_Request, p_Result.Totals))};
    case RunRequest::Type::Verify:
        return {QStringLiteral("every file of %1, build %2, is right (%3)")
                    .arg(p_Name, p_Result.BuildText(), Totals(p_Request, p_Result.Totals))};
    case RunRequest::Type::AskMirrors:
    case RunRequest::Type::PreviewUninstall:
        return {};
    case RunRequest::Type::PreviewInstall:
        return {InstallSummary(p_Result, p_Name)};
    case RunRequest::Type::Uninstall:
        return {p_Request.DeletesFiles
                    ? QStringLiteral("%1 is uninstalled; files that are not of the game stayed")
                          .arg(p_Name)
                    : QStringLiteral("%1 is uninstalled; its files stayed").arg(p_Name)};
    case RunRequest::Type::Play:
        return {StartSummary(p_Result, p_Name)};
    case RunRequest::Type::ChooseLocale:
        return {QStringLiteral("The language is %1; \"update\" fetches its files")
                    .arg(p_Result.Locale)};
    case RunRequest::Type::ListLocales:
        break;
    }
    return Languages(p_Result);
}

} // namespace Varnholt::Host::Reports
