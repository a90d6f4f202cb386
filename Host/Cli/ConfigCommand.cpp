#include "Host/Cli/ConfigCommand.hpp"

#include "Host/Cli/KeptOption.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Programs/Suggestion.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Host::ConfigCommand {

namespace {

constexpr char c_ServerVariable[] = "VARNHOLT_CONTENT_BASE_URL";
QString const c_PasswordShown = QStringLiteral("(set)");

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

Failure UnknownKey(QString const& p_Key)
{
    QString const suggestion = Programs::Suggestion(p_Key, Keys());
    return {FailureKind::OptionUnknown, p_Key,
            suggestion.isEmpty()
                ? QStringLiteral("choose one of: ") + Keys().join(QStringLiteral(", "))
                : suggestion};
}

/// The value as it is kept: file names are made absolute, since a later run starts in another
/// folder, and every word for yes is kept as "true".
QString ToKeep(QString const& p_Key, QString const& p_Value)
{
    auto const option = OptionOf(p_Key);
    if (option && option->IsFile())
        return QDir::cleanPath(QDir::current().absoluteFilePath(p_Value));
    if (p_Key == QLatin1String("trust-key")) // the key, whatever becomes of its file
        return OptionText::TrustKey(p_Value);
    if (option && option->IsFlag())
        return QVariant(OptionText::YesOrNo(p_Value).value_or(false)).toString();
    return p_Value;
}

/// The module reads this variable by itself, so that it goes before the settings here too.
QString ModulesServer(KeptOption const& p_Option)
{
    return QLatin1String(p_Option.Name) == QLatin1String("content-url")
               ? qEnvironmentVariable(c_ServerVariable)
               : QString();
}

/// Of the content server. The variable is removed: the game would inherit it.
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
    return p_Key == QLatin1String(c_Password) && !value.isEmpty() ? c_PasswordShown : value;
}

std::optional<Failure> Set(HostSettings& p_Settings, QString const& p_Key, QString const& p_Value)
{
    if (!Keys().contains(p_Key))
        return UnknownKey(p_Key);
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

GivenOption InForce(Choice const& p_Choice, HostSettings const& p_Settings, QString const& p_Key)
{
    QString const kept = Shown(p_Settings, p_Key);
    GivenOption const ofSettings{kept, QStringLiteral("settings file")};
    QString const environment = QStringLiteral("environment");
    auto const option = OptionOf(p_Key);
    if (!option) { // the variable is gone by now
        QString const password = p_Choice.Options.ContentPassword;
        if (password.isEmpty())
            return {{}, QStringLiteral("default")};
        return password == Value(p_Settings, p_Key) ? ofSettings
                                                    : GivenOption{c_PasswordShown, environment};
    }
    if (p_Choice.Given.contains(p_Key))
        return p_Choice.Given[p_Key];
    if (QString const server = ModulesServer(*option); !server.isEmpty())
        return {server, environment};
    return kept.isEmpty() ? GivenOption{option->Default(), QStringLiteral("default")} : ofSettings;
}

std::optional<Failure> Complete(Choice& p_Choice, HostSettings const& p_Settings)
{
    std::optional<Failure> failure;
    auto const note = [&failure](std::optional<Failure> const& p_Fault) {
        if (!failure)
            failure = p_Fault;
        return p_Fault.has_value();
    };
    for (KeptOption const& option : KeptOption::All()) {
        QString const name = QLatin1String(option.Name);
        QString text = p_Choice.Given.value(name).Text;
        QString const server = ModulesServer(option);
        if (text.isEmpty() && !server.isEmpty()) {
            QString const why = option.Fault(server);
            if (!why.isEmpty())
                note(Failure{FailureKind::OptionInvalid, QLatin1String(c_ServerVariable), why});
        } else if (text.isEmpty() && !note(FaultOf(name, Value(p_Settings, name)))) {
            text = Value(p_Settings, name);
        }
        if (!text.isEmpty())
            option.Apply(p_Choice, text);
    }
    p_Choice.Options.ContentPassword = Password(p_Settings);
    return failure;
}

} // namespace Varnholt::Host::ConfigCommand
