#include "Host/Core/Session/ControlLine.hpp"

#include "Host/Core/Settings/SettingsFile.hpp"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <unistd.h>

namespace Varnholt::Host::ControlLine {

namespace {

QByteArray const c_Limit = QByteArrayLiteral("limit ");

constexpr struct {
    ControlMessage::Type Kind;
    char const* Line;
} c_Words[] = {
    {ControlMessage::Type::Pause, "pause\n"},
    {ControlMessage::Type::Resume, "resume\n"},
    {ControlMessage::Type::Look, "status\n"},
    {ControlMessage::Type::Follow, "watch\n"},
};

/// A figure that can exceed what a script's 32-bit integer holds, never a double's 53 bits.
double Figure(quint64 p_Value)
{
    return static_cast<double>(p_Value);
}

quint64 FigureIn(QJsonValue const& p_Value)
{
    return static_cast<quint64>(std::max(0.0, p_Value.toDouble()));
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

ServerWait WaitIn(QJsonValue const& p_Value)
{
    return {p_Value["server"].toString(),
            p_Value["cause"].toString(),
            static_cast<qint64>(p_Value["silent"].toDouble()),
            static_cast<qint64>(p_Value["nextAttempt"].toDouble()),
            p_Value["attempt"].toInt(),
            p_Value["attempts"].toInt()};
}

} // namespace

QString SocketOf(QString const& p_Folder)
{
    constexpr int c_Digits = 16;

    QByteArray const folder = SettingsFile::Canonical(p_Folder).toUtf8();
    QByteArray const digest =
        QCryptographicHash::hash(folder, QCryptographicHash::Sha256).toHex().left(c_Digits);
    // The one folder that every environment of a user has in common and that leaves the name of a
    // socket short enough.
    return QStringLiteral("/tmp/varnholt-host-%1-%2")
        .arg(::geteuid())
        .arg(QString::fromLatin1(digest));
}

QByteArray Of(ControlMessage const& p_Message)
{
    for (auto const& word : c_Words)
        if (word.Kind == p_Message.Kind)
            return word.Line;
    return c_Limit + QByteArray::number(p_Message.BytesPerSecond) + '\n';
}

std::optional<ControlMessage> MessageIn(QByteArray const& p_Line)
{
    for (auto const& word : c_Words)
        if (p_Line == word.Line)
            return ControlMessage{word.Kind, 0};
    if (!p_Line.startsWith(c_Limit))
        return std::nullopt;
    ControlMessage const message{ControlMessage::Type::LimitRate,
                                 p_Line.mid(c_Limit.size()).chopped(1).toULongLong()};
    // toULongLong() also reads signs and blanks, which are no message.
    return Of(message) == p_Line ? std::optional(message) : std::nullopt;
}

QJsonObject ObjectOf(RunSnapshot const& p_Snapshot)
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

RunSnapshot SnapshotIn(QJsonObject const& p_Object)
{
    RunSnapshot snapshot;
    snapshot.Phase = PhaseNamed(p_Object[QLatin1String("phase")].toString());
    snapshot.FileNumber = static_cast<quint32>(FigureIn(p_Object[QLatin1String("fileNumber")]));
    snapshot.FileCount = static_cast<quint32>(FigureIn(p_Object[QLatin1String("fileCount")]));
    snapshot.BytesDone = FigureIn(p_Object[QLatin1String("bytes")]);
    snapshot.BytesTotal = FigureIn(p_Object[QLatin1String("total")]);
    snapshot.BytesReceived = FigureIn(p_Object[QLatin1String("received")]);
    snapshot.Rate = FigureIn(p_Object[QLatin1String("rate")]);
    snapshot.File = p_Object[QLatin1String("file")].toString();
    snapshot.Mirror = p_Object[QLatin1String("mirror")].toString();
    snapshot.Remaining = static_cast<qint64>(p_Object[QLatin1String("eta")].toDouble(-1));
    for (QJsonValue const server : p_Object[QLatin1String("servers")].toArray())
        snapshot.Servers.push_back({server["server"].toString(), FigureIn(server["rate"])});
    if (p_Object.contains(QLatin1String("wait")))
        snapshot.Wait = WaitIn(p_Object[QLatin1String("wait")]);
    return snapshot;
}

QByteArray Of(QJsonObject const& p_Object)
{
    return QJsonDocument(p_Object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject EndOf(RunResult const& p_Result)
{
    QJsonObject object{{QStringLiteral("end"), true},
                       {QStringLiteral("build"), p_Result.Build},
                       {QStringLiteral("folder"), p_Result.Folder},
                       {QStringLiteral("locale"), p_Result.Locale},
                       {QStringLiteral("transfers"), static_cast<qint64>(p_Result.Transfers)},
                       {QStringLiteral("buildName"), p_Result.BuildName},
                       {QStringLiteral("files"), Figure(p_Result.Totals.Files)},
                       {QStringLiteral("bytes"), Figure(p_Result.Totals.Bytes)},
                       {QStringLiteral("milliseconds"), p_Result.Totals.Milliseconds},
                       {QStringLiteral("rate"), Figure(p_Result.Totals.Rate)}};
    if (p_Result.Problem) {
        object.insert(QStringLiteral("error"), p_Result.Problem->Identifier());
        object.insert(QStringLiteral("subject"), p_Result.Problem->Subject);
        object.insert(QStringLiteral("detail"), p_Result.Problem->Detail);
    }
    return object;
}

RunResult ResultIn(QJsonObject const& p_Object)
{
    RunResult result;
    result.Build = p_Object[QLatin1String("build")].toString();
    result.Folder = p_Object[QLatin1String("folder")].toString();
    result.Locale = p_Object[QLatin1String("locale")].toString();
    result.Transfers = static_cast<quint32>(FigureIn(p_Object[QLatin1String("transfers")]));
    result.BuildName = p_Object[QLatin1String("buildName")].toString();
    result.Totals = {static_cast<quint32>(FigureIn(p_Object[QLatin1String("files")])),
                     FigureIn(p_Object[QLatin1String("bytes")]),
                     static_cast<qint64>(FigureIn(p_Object[QLatin1String("milliseconds")])),
                     FigureIn(p_Object[QLatin1String("rate")])};
    if (p_Object.contains(QLatin1String("error")))
        result.Problem = Failure{Failure::Named(p_Object[QLatin1String("error")].toString()),
                                 p_Object[QLatin1String("subject")].toString(),
                                 p_Object[QLatin1String("detail")].toString()};
    return result;
}

} // namespace Varnholt::Host::ControlLine
