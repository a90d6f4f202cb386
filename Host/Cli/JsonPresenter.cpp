#include "Host/Cli/JsonPresenter.hpp"

#include "Host/Cli/Console.hpp"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

namespace Varnholt::Host {

namespace {

/// A figure that can exceed what a script's 32-bit integer holds, never a double's 53 bits.
double Figure(quint64 p_Value)
{
    return static_cast<double>(p_Value);
}

QJsonArray ArrayOf(std::vector<ServerShare> const& p_Servers)
{
    QJsonArray servers;
    for (ServerShare const& server : p_Servers)
        servers.append(QJsonObject{{QStringLiteral("server"), server.Name},
                                   {QStringLiteral("rate"), Figure(server.Rate)}});
    return servers;
}

QJsonObject ObjectOf(ServerWait const& p_Wait)
{
    QJsonObject object{{QStringLiteral("server"), p_Wait.Server},
                       {QStringLiteral("cause"), p_Wait.Cause},
                       {QStringLiteral("silent"), p_Wait.Silent},
                       {QStringLiteral("nextAttempt"), p_Wait.NextAttempt},
                       {QStringLiteral("attempt"), p_Wait.Attempt}};
    if (p_Wait.Attempts > 0)
        object.insert(QStringLiteral("attempts"), p_Wait.Attempts);
    return object;
}

QJsonObject ObjectOf(FileFinding const& p_Finding)
{
    QJsonObject object{{QStringLiteral("file"), p_Finding.Path},
                       {QStringLiteral("cause"), p_Finding.CauseText()}};
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

} // namespace

JsonPresenter::JsonPresenter(Console& p_Console)
    : Output(p_Console)
{
}

void JsonPresenter::Write(char const* p_Type, QJsonObject p_Object)
{
    p_Object.insert(QStringLiteral("type"), QLatin1String(p_Type));
    p_Object.insert(QStringLiteral("time"),
                    QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    Output.Result(QString::fromUtf8(QJsonDocument(p_Object).toJson(QJsonDocument::Compact)));
}

void JsonPresenter::ShowInfo(ModuleInfo const& p_Info)
{
    Write("info", {{QStringLiteral("module"), p_Info.File},
                   {QStringLiteral("game"), p_Info.Name},
                   {QStringLiteral("identifier"), p_Info.AppId},
                   {QStringLiteral("plugin"), p_Info.MetaDataName},
                   {QStringLiteral("version"), p_Info.Version},
                   {QStringLiteral("presentation"), ObjectOf(p_Info.Presentation)},
                   {QStringLiteral("images"), ObjectOf(p_Info.Images)}});
}

void JsonPresenter::ShowStatus(InstallStatus const& p_Status)
{
    Write("status", {{QStringLiteral("game"), p_Status.Name},
                     {QStringLiteral("installed"), p_Status.IsInstalled},
                     {QStringLiteral("folder"), p_Status.Folder},
                     {QStringLiteral("folderExists"), p_Status.FolderExists},
                     {QStringLiteral("locale"), p_Status.Locale},
                     {QStringLiteral("build"), p_Status.Build},
                     {QStringLiteral("pending"), p_Status.PendingBase + p_Status.PendingStreamed},
                     {QStringLiteral("unfinished"), p_Status.IsUnfinished}});
}

void JsonPresenter::ShowLocale(QString const& p_Locale)
{
    Write("locale", {{QStringLiteral("locale"), p_Locale}});
}

void JsonPresenter::ShowOption(QString const& p_Key, QString const& p_Value,
                               QString const& p_Origin, bool /*p_IsListed*/)
{
    QJsonObject object{{QStringLiteral("key"), p_Key}, {QStringLiteral("value"), p_Value}};
    if (!p_Origin.isEmpty())
        object.insert(QStringLiteral("origin"), p_Origin);
    Write("option", object);
}

void JsonPresenter::ShowProgress(RunSnapshot const& p_Snapshot)
{
    constexpr qint64 c_IntervalMilliseconds = 500;

    bool const isNew = p_Snapshot.Phase != Phase || !SinceProgress.isValid();
    if (!isNew && !SinceProgress.hasExpired(c_IntervalMilliseconds))
        return;
    Phase = p_Snapshot.Phase;
    Write("progress", Progress(p_Snapshot));
    SinceProgress.start(); // behind the line: its own time decides how often lines come
}

QJsonObject JsonPresenter::Progress(RunSnapshot const& p_Snapshot)
{
    QJsonObject object{{QStringLiteral("phase"), PhaseName(p_Snapshot.Phase)},
                       {QStringLiteral("fileNumber"), static_cast<qint64>(p_Snapshot.FileNumber)},
                       {QStringLiteral("fileCount"), static_cast<qint64>(p_Snapshot.FileCount)},
                       {QStringLiteral("bytes"), Figure(p_Snapshot.BytesDone)},
                       {QStringLiteral("total"), Figure(p_Snapshot.BytesTotal)},
                       {QStringLiteral("received"), Figure(p_Snapshot.BytesReceived)},
                       {QStringLiteral("rate"), Figure(p_Snapshot.Rate)}};
    if (!p_Snapshot.File.isEmpty())
        object.insert(QStringLiteral("file"), p_Snapshot.File);
    if (!p_Snapshot.Mirror.isEmpty())
        object.insert(QStringLiteral("mirror"), p_Snapshot.Mirror);
    if (p_Snapshot.Remaining >= 0)
        object.insert(QStringLiteral("eta"), p_Snapshot.Remaining);
    if (!p_Snapshot.Servers.empty())
        object.insert(QStringLiteral("servers"), ArrayOf(p_Snapshot.Servers));
    if (p_Snapshot.Wait)
        object.insert(QStringLiteral("wait"), ObjectOf(*p_Snapshot.Wait));
    return object;
}

void JsonPresenter::ShowSpace(VolumeSpace const& p_Space, bool /*p_IsResult*/)
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

void JsonPresenter::WriteNotice(QString const& p_Text)
{
    Write("notice", {{QStringLiteral("text"), p_Text}});
}

void JsonPresenter::ShowResult(RunRequest const& p_Request, RunResult const& p_Result,
                               QString const& p_Game)
{
    for (FileFinding const& finding : p_Result.Findings)
        Write("finding", ObjectOf(finding));
    for (MirrorReport const& report : p_Result.Mirrors)
        Write("mirror", ObjectOf(report));
    for (Failure const& warning : p_Result.Warnings)
        Write("warning", ObjectOf(warning));
    if (p_Request.Kind == RunRequest::Type::PreviewInstall && !p_Result.Problem)
        Write("preview", {{QStringLiteral("files"), static_cast<qint64>(p_Result.Amount.Files)},
                          {QStringLiteral("bytes"), Figure(p_Result.Amount.Bytes)},
                          {QStringLiteral("atLeast"), p_Result.Amount.IsLeast}});
    if (p_Request.Kind == RunRequest::Type::ListLocales)
        for (auto const& locale : p_Result.Locales)
            Write("locale", {{QStringLiteral("locale"), locale.Tag},
                             {QStringLiteral("name"), locale.Name},
                             {QStringLiteral("chosen"), locale.Tag == p_Result.Locale}});
    if (p_Result.Problem)
        return;
    QJsonObject result{{QStringLiteral("game"), p_Game},
                       {QStringLiteral("build"), p_Result.Build},
                       {QStringLiteral("folder"), p_Result.Folder},
                       {QStringLiteral("locale"), p_Result.Locale},
                       {QStringLiteral("transfers"), static_cast<qint64>(p_Result.Transfers)}};
    if (p_Result.ProcessId != 0)
        result.insert(QStringLiteral("processId"), p_Result.ProcessId);
    if (!p_Result.OutputFile.isEmpty())
        result.insert(QStringLiteral("output"), p_Result.OutputFile);
    Write("result", result);
}

void JsonPresenter::WriteFailure(Failure const& p_Failure)
{
    QJsonObject object = ObjectOf(p_Failure);
    object.insert(QStringLiteral("exitStatus"), p_Failure.ExitStatus());
    Write("error", object);
}

} // namespace Varnholt::Host
