#include "Host/Cli/ConfigCommand.hpp"

#include "Host/Core/HostOptions.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Host::ConfigCommand {

namespace {

QString StoreKey(QString const& p_Key)
{
    return QStringLiteral("options/") + p_Key;
}

bool IsFile(QString const& p_Key)
{
    return p_Key == QLatin1String("module") || p_Key == QLatin1String("log-file");
}

/// A name is meant in the folder in which it is given, not in that of a later run.
QString Absolute(QString const& p_Name)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(p_Name));
}

bool IsValid(QString const& p_Key, QString const& p_Value)
{
    if (p_Key == QLatin1String("content-url"))
        return HostOptions::IsContentUrl(p_Value);
    if (p_Key == QLatin1String("color"))
        return QStringList{QStringLiteral("auto"), QStringLiteral("always"),
                           QStringLiteral("never")}
            .contains(p_Value);
    if (p_Key == QLatin1String("dev-channel"))
        return QStringList{QStringLiteral("true"), QStringLiteral("false")}.contains(p_Value);
    return true;
}

} // namespace

QStringList Keys()
{
    return {QStringLiteral("module"), QStringLiteral("content-url"), QStringLiteral("dev-channel"),
            QStringLiteral("log-file"), QStringLiteral("color")};
}

QString Value(HostSettings const& p_Settings, QString const& p_Key)
{
    return p_Settings.Value(StoreKey(p_Key)).toString();
}

bool Flag(HostSettings const& p_Settings, QString const& p_Key)
{
    return Value(p_Settings, p_Key) == QLatin1String("true");
}

std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value)
{
    if (!Keys().contains(p_Key))
        return Failure{FailureKind::OptionUnknown, p_Key, Keys().join(QStringLiteral(", "))};
    if (!p_Value.isEmpty() && !IsValid(p_Key, p_Value))
        return Failure{FailureKind::OptionInvalid, p_Key,
                       QLatin1Char('"') + p_Value + QLatin1Char('"')};
    if (p_Value.isEmpty())
        p_Settings.Remove(StoreKey(p_Key));
    else
        p_Settings.SetValue(StoreKey(p_Key), IsFile(p_Key) ? Absolute(p_Value) : p_Value);
    if (!p_Settings.Flush())
        return Failure{FailureKind::SettingsUnwritable, p_Settings.File(), {}};
    return std::nullopt;
}

QStringList SetKeys(HostSettings const& p_Settings)
{
    QStringList keys = Keys();
    keys.erase(
        std::remove_if(keys.begin(), keys.end(),
                       [&](QString const& p_Key) { return Value(p_Settings, p_Key).isEmpty(); }),
        keys.end());
    return keys;
}

} // namespace Varnholt::Host::ConfigCommand
