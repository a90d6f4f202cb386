#include "Host/Cli/Console.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Session/ControlLine.hpp"

#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Host {

namespace {

/// A figure that can exceed what a script's 32-bit integer holds, never a double's 53 bits.
double Figure(quint64 p_Value)
{
    return static_cast<double>(p_Value);
}

QString TimeText(QDateTime const& p_Time)
{
    return p_Time.toString(Qt::ISODateWithMs);
}

QJsonObject ObjectOf(FileFinding const& p_Finding)
{
    QJsonObject object{{QStringLiteral("file"), p_Finding.Path},
                       {QStringLiteral("cause"), p_Finding.CauseText()},
                       {QStringLiteral("error"), p_Finding.Problem.Identifier()},
                       {QStringLiteral("text"), p_Finding.Problem.Sentence()},
                       {QStringLiteral("remedy"), p_Finding.Problem.Remedy()}};
    if (p_Finding.Bytes >= 0)
        object.insert(QStringLiteral("bytes"), p_Finding.Bytes);
    return object;
}

QJsonObject ObjectOf(MirrorReport const& p_Report)
{
    QJsonObject object{{QStringLiteral("mirror"), p_Report.Host},
                       {QStringLiteral("reachable"), p_Report.IsReachable},
                       {QStringLiteral("ranges"), p_Report.GivesRanges},
                       {QStringLiteral("sameBuild"), p_Report.HasSameBuild}};
    if (p_Report.Milliseconds >= 0)
        object.insert(QStringLiteral("milliseconds"), p_Report.Milliseconds);
    if (!p_Report.Cause.isEmpty())
        object.insert(QStringLiteral("cause"), p_Report.Cause);
    return object;
}

QJsonObject ObjectOf(Failure const& p_Failure)
{
    return {{QStringLiteral("error"), p_Failure.Identifier()},
            {QStringLiteral("subject"), p_Failure.Subject},
            {QStringLiteral("text"), p_Failure.Sentence()},
            {QStringLiteral("remedy"), p_Failure.Remedy()}};
}

QJsonObject ObjectOf(QVector<QPair<QString, QString>> const& p_Rows)
{
    QJsonObject object;
    for (auto const& row : p_Rows)
        object.insert(row.first, row.second);
    return object;
}

QJsonObject ErrorOf(Failure const& p_Failure)
{
    QJsonObject object = ObjectOf(p_Failure);
    object.insert(QStringLiteral("exitStatus"), p_Failure.ExitStatus());
    return object;
}

QJsonObject ObjectOf(RunTotals const& p_Totals)
{
    constexpr double c_Second = 1'000;

    return {{QStringLiteral("files"), Figure(p_Totals.Files)},
            {QStringLiteral("bytes"), Figure(p_Totals.Bytes)},
            {QStringLiteral("seconds"), static_cast<double>(p_Totals.Milliseconds) / c_Second},
            {QStringLiteral("rate"), Figure(p_Totals.Rate)}};
}

QJsonObject ObjectOf(FileAmount const& p_Amount)
{
    return {{QStringLiteral("files"), Figure(p_Amount.Files)},
            {QStringLiteral("bytes"), Figure(p_Amount.Bytes)},
            {QStringLiteral("atLeast"), p_Amount.IsLeast}};
}

/// What a run has moved, and what a check has found that an update would move.
void AddFigures(QJsonObject& p_Object, RunRequest const& p_Request, RunResult const& p_Result)
{
    p_Object.insert(QStringLiteral("totals"), ObjectOf(p_Result.Totals));
    bool const isAnswered =
        !p_Result.Problem || p_Result.Problem->Kind == FailureKind::UpdateAvailable;
    if (p_Request.Kind == RunRequest::Type::Check && !p_Request.Quick && isAnswered)
        p_Object.insert(QStringLiteral("toFetch"), ObjectOf(AmountOf(p_Result.Findings)));
}

class JsonPresenter : public Presenter {
public:
    explicit JsonPresenter(Console& p_Console)
        : Output(p_Console)
    {
    }

    void ShowInfo(ModuleInfo const& p_Info) override
    {
        bool const isSigned = !p_Info.TrustKey.isEmpty();
        Write("info", {{QStringLiteral("module"), p_Info.File},
                       {QStringLiteral("game"), p_Info.Name},
                       {QStringLiteral("identifier"), p_Info.AppId},
                       {QStringLiteral("plugin"), p_Info.MetaDataName},
                       {QStringLiteral("version"), p_Info.Version},
                       {QStringLiteral("documents"),
                        isSigned ? QStringLiteral("signed") : QStringLiteral("unsigned")},
                       {QStringLiteral("trustKey"), p_Info.TrustKey},
                       {QStringLiteral("presentation"), ObjectOf(p_Info.Presentation)},
                       {QStringLiteral("images"), ObjectOf(p_Info.Images)}});
    }

    void ShowStatus(InstallStatus const& p_Status) override
    {
        QJsonObject status{
            {QStringLiteral("game"), p_Status.Name},
            {QStringLiteral("installed"), p_Status.IsInstalled},
            {QStringLiteral("folder"), p_Status.Folder},
            {QStringLiteral("folderExists"), p_Status.FolderExists},
            {QStringLiteral("locale"), p_Status.Locale},
            {QStringLiteral("build"), p_Status.Build},
            {QStringLiteral("pending"), p_Status.PendingBase + p_Status.PendingStreamed},
            {QStringLiteral("unfinished"), p_Status.IsUnfinished}};
        if (p_Status.Download) {
            QJsonObject download = ControlLine::ObjectOf(p_Status.Download->Snapshot);
            download.insert(QStringLiteral("process"), p_Status.Download->ProcessId);
            status.insert(QStringLiteral("download"), download);
        }
        Write("status", status);
    }

    void ShowLocale(QString const& p_Locale) override
    {
        Write("locale", {{QStringLiteral("locale"), p_Locale}});
    }

    void ShowOption(QString const& p_Key, QString const& p_Value, QString const& p_Origin,
                    bool /*p_IsListed*/) override
    {
        QJsonObject object{{QStringLiteral("key"), p_Key}, {QStringLiteral("value"), p_Value}};
        if (!p_Origin.isEmpty())
            object.insert(QStringLiteral("origin"), p_Origin);
        Write("option", object);
    }

    /// At most twice a second within a phase.
    void ShowProgress(RunSnapshot const& p_Snapshot) override
    {
        constexpr qint64 c_IntervalMilliseconds = 500;

        bool const isNew = p_Snapshot.Phase != Phase || !SinceProgress.isValid();
        if (!isNew && !SinceProgress.hasExpired(c_IntervalMilliseconds))
            return;
        Phase = p_Snapshot.Phase;
        Write("progress", ControlLine::ObjectOf(p_Snapshot));
        SinceProgress.start(); // behind the line: its own time decides how often lines come
    }

    void ShowSpace(VolumeSpace const& p_Space, bool /*p_IsResult*/) override
    {
        QJsonObject object{{QStringLiteral("folder"), p_Space.Folder},
                           {QStringLiteral("files"), static_cast<qint64>(p_Space.Files)},
                           {QStringLiteral("unsized"), static_cast<qint64>(p_Space.Unsized)},
                           {QStringLiteral("needed"), p_Space.Needed}};
        if (p_Space.IsKnown()) {
            object.insert(QStringLiteral("free"), p_Space.Free);
            object.insert(QStringLiteral("after"), p_Space.After());
        }
        Write("space", object);
    }

protected:
    void WriteNotice(Notice const& p_Notice) override
    {
        QJsonObject object{{QStringLiteral("time"), TimeText(p_Notice.Time)},
                           {QStringLiteral("severity"), p_Notice.SeverityName()},
                           {QStringLiteral("kind"), p_Notice.Identifier()},
                           {QStringLiteral("text"), p_Notice.Text()}};
        if (QString const remedy = p_Notice.Remedy(); !remedy.isEmpty())
            object.insert(QStringLiteral("remedy"), remedy);
        Write("notice", object);
    }

    void WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                     QString const& p_Game) override
    {
        for (FileFinding const& finding : p_Result.Findings)
            Write("finding", ObjectOf(finding));
        for (MirrorReport const& report : p_Result.Mirrors)
            Write("mirror", ObjectOf(report));
        for (Failure const& warning : p_Result.Warnings)
            Write("warning", ObjectOf(warning));
        if (p_Request.Kind == RunRequest::Type::PreviewInstall && !p_Result.Problem)
            Write("preview", ObjectOf(p_Result.Amount));
        if (p_Request.Kind == RunRequest::Type::ListLocales)
            for (auto const& locale : p_Result.Locales)
                Write("locale", {{QStringLiteral("locale"), locale.Tag},
                                 {QStringLiteral("name"), locale.Name},
                                 {QStringLiteral("chosen"), locale.Tag == p_Result.Locale}});
        if (p_Result.Problem) {
            QJsonObject error = ErrorOf(*p_Result.Problem);
            AddFigures(error, p_Request, p_Result);
            return Write("error", error);
        }
        QJsonObject result{{QStringLiteral("game"), p_Game},
                           {QStringLiteral("build"), p_Result.Build},
                           {QStringLiteral("buildName"), p_Result.BuildName},
                           {QStringLiteral("folder"), p_Result.Folder},
                           {QStringLiteral("locale"), p_Result.Locale},
                           {QStringLiteral("transfers"), static_cast<qint64>(p_Result.Transfers)}};
        if (p_Result.ProcessId != 0)
            result.insert(QStringLiteral("processId"), p_Result.ProcessId);
        if (!p_Result.OutputFile.isEmpty())
            result.insert(QStringLiteral("output"), p_Result.OutputFile);
        AddFigures(result, p_Request, p_Result);
        Write("result", result);
    }

    void WriteFailure(Failure const& p_Failure) override { Write("error", ErrorOf(p_Failure)); }

private:
    /// Adds type and time, unless it has one, and writes the line.
    void Write(char const* p_Type, QJsonObject p_Object)
    {
        p_Object.insert(QStringLiteral("type"), QLatin1String(p_Type));
        if (!p_Object.contains(QLatin1String("time")))
            p_Object.insert(QStringLiteral("time"), TimeText(QDateTime::currentDateTimeUtc()));
        Output.Result(QString::fromUtf8(QJsonDocument(p_Object).toJson(QJsonDocument::Compact)));
    }

    Console& Output;
    RunPhase Phase = RunPhase::Idle;
    QElapsedTimer SinceProgress;
};

} // namespace

std::unique_ptr<Presenter> MakeJsonPresenter(Console& p_Console)
{
    return std::make_unique<JsonPresenter>(p_Console);
}

} // namespace Varnholt::Host
