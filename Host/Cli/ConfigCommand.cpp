#include "Host/Cli/ConfigCommand.hpp"

#include "Host/Cli/KeptOption.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Host::ConfigCommand {

namespace {

QString StoreKey(QString const& p_Key)
{
    return p_Key == QLatin1String(c_Password) ? QLatin1String(HostSettings::c_PasswordKey)
                                              : QStringLiteral("options/") + p_Key;
}

/// None for the password.
std::optional<KeptOption> OptionOf(QString const& p_Key)
{
    for (KeptOption const& option : KeptOption::All())
        if (p_Key == QLatin1String(option.Name))
            return option;
    return std::nullopt;
}

std::optional<Failure> FaultOf(QString const& p_Key, QString const& p_Value)
{
    auto const option = OptionOf(p_Key);
    QString const why = option && !p_Value.isEmpty() ? option->Fault(p_Value) : QString();
    if (why.isEmpty())
        return std::nullopt;
    return Failure{FailureKind::OptionInvalid, p_Key, why};
}

/// A name is meant in the folder in which it is given, not in that of a later run.
QString ToKeep(QString const& p_Key, QString const& p_Value)
{
    auto const option = OptionOf(p_Key);
    return option && option->IsFile() ? QDir::cleanPath(QDir::current().absoluteFilePath(p_Value))
                                      : p_Value;
}

/// The variable that the module reads by itself stands above the settings too.
bool IsGivenOtherwise(KeptOption const& p_Option)
{
    return QLatin1String(p_Option.Name) == QLatin1String("content-url") &&
           !qEnvironmentVariableIsEmpty("VARNHOLT_CONTENT_BASE_URL");
}

/// Of the content server. The environment is the game's too, to which it is no use.
QString Password(HostSettings const& p_Settings)
{
    constexpr char c_Variable[] = "VARNHOLT_CONTENT_PASSWORD";

    QString const password = qEnvironmentVariable(c_Variable);
    qunsetenv(c_Variable);
    return password.isEmpty() ? Value(p_Settings, QLatin1String(c_Password)) : password;
}

} // namespace

QStringList Keys()
{
    QStringList keys;
    for (KeptOption const& option : KeptOption::All())
        keys += QLatin1String(option.Name);
    keys.insert(keys.indexOf(QStringLiteral("content-user")) + 1, QLatin1String(c_Password));
    return keys;
}

QString Value(HostSettings const& p_Settings, QString const& p_Key)
{
    return p_Settings.Value(StoreKey(p_Key)).toString();
}

QString Shown(HostSettings const& p_Settings, QString const& p_Key)
{
    QString const value = Value(p_Settings, p_Key);
    return p_Key == QLatin1String(c_Password) && !value.isEmpty() ? QStringLiteral("(set)") : value;
}

std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value)
{
    if (!Keys().contains(p_Key))
        return Failure{FailureKind::OptionUnknown, p_Key, Keys().join(QStringLiteral(", "))};
    if (auto fault = FaultOf(p_Key, p_Value))
        return fault;
    if (p_Value.isEmpty())
        p_Settings.Remove(StoreKey(p_Key));
    else
        p_Settings.SetValue(StoreKey(p_Key), ToKeep(p_Key, p_Value));
    return p_Settings.Save();
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

std::optional<Failure> Complete(Choice& p_Choice, HostSettings const& p_Settings)
{
    std::optional<Failure> failure;
    for (KeptOption const& option : KeptOption::All()) {
        QString const name = QLatin1String(option.Name);
        QString text = p_Choice.Given.value(name);
        if (text.isEmpty() && !IsGivenOtherwise(option)) {
            auto const fault = FaultOf(name, Value(p_Settings, name));
            if (!fault)
                text = Value(p_Settings, name);
            else if (!failure)
                failure = fault;
        }
        if (!text.isEmpty())
            option.Apply(p_Choice, text);
    }
    p_Choice.Options.ContentPassword = Password(p_Settings);
    return failure;
}

} // namespace Varnholt::Host::ConfigCommand
