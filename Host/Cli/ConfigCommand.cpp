#include "Host/Cli/ConfigCommand.hpp"

#include "Host/Cli/KeptOption.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Programs/Suggestion.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Host::ConfigCommand {

namespace {

using SettingsFile::Values;

QString const c_PasswordShown = QStringLiteral("(set)");
QString const c_Group = QStringLiteral("options/");

QString StoreKey(QString const& p_Key)
{
    return c_Group + p_Key;
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

} // namespace

QStringList Keys()
{
    QStringList keys;
    for (KeptOption const& option : KeptOption::All())
        keys += QLatin1String(option.Name);
    keys.insert(keys.indexOf(QStringLiteral("content-user")) + 1, QLatin1String(c_Password));
    return keys;
}

QString Value(Values const& p_Kept, QString const& p_Key)
{
    return p_Kept.value(StoreKey(p_Key)).toString();
}

QString Shown(Values const& p_Kept, QString const& p_Key)
{
    QString const value = Value(p_Kept, p_Key);
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

QStringList SetKeys(Values const& p_Kept)
{
    QStringList keys = Keys();
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [&](QString const& p_Key) { return Value(p_Kept, p_Key).isEmpty(); }),
               keys.end());
    return keys;
}

GivenOption InForce(Choice const& p_Choice, Values const& p_Kept, QString const& p_Key)
{
    if (p_Choice.Given.contains(p_Key))
        return p_Choice.Given[p_Key];
    QString const kept = Shown(p_Kept, p_Key);
    if (!kept.isEmpty())
        return {kept, QStringLiteral("settings file")};
    auto const option = OptionOf(p_Key);
    return {option ? option->Default() : QString(), QStringLiteral("default")};
}

std::vector<Failure> UnknownKeys(Values const& p_Kept)
{
    QStringList const known = Keys();
    std::vector<Failure> unknown;
    for (QString const& key : p_Kept.keys())
        if (key.startsWith(c_Group) && !known.contains(key.mid(c_Group.size())))
            unknown.push_back(UnknownKey(key.mid(c_Group.size())));
    return unknown;
}

std::optional<Failure> TakeEnvironment(Choice& p_Choice)
{
    constexpr char c_PasswordVariable[] = "VARNHOLT_CONTENT_PASSWORD";
    constexpr char c_ServerVariable[] =
        "VARNHOLT_CONTENT_BASE_URL"; // the module reads it by itself
    QString const serverKey = QStringLiteral("content-url");
    QString const origin = QStringLiteral("environment");

    p_Choice.Options.ContentPassword = qEnvironmentVariable(c_PasswordVariable);
    qunsetenv(c_PasswordVariable); // the environment is the game's too, to which it is no use
    if (!p_Choice.Options.ContentPassword.isEmpty())
        p_Choice.Given[QLatin1String(c_Password)] = {c_PasswordShown, origin};
    QString const server = qEnvironmentVariable(c_ServerVariable);
    if (server.isEmpty() || p_Choice.Given.contains(serverKey))
        return std::nullopt;
    p_Choice.Given[serverKey] = {server, origin};
    QString const why = OptionText::WhyNotServer(server);
    if (why.isEmpty())
        return std::nullopt;
    return Failure{FailureKind::OptionInvalid, QLatin1String(c_ServerVariable), why};
}

std::vector<Failure> Complete(Choice& p_Choice, Values const& p_Kept)
{
    std::vector<Failure> faults;
    for (KeptOption const& option : KeptOption::All()) {
        QString const name = QLatin1String(option.Name);
        bool const isGiven = p_Choice.Given.contains(name);
        QString const text = isGiven ? p_Choice.Given[name].Text : Value(p_Kept, name);
        auto const fault = FaultOf(name, text);
        if (fault && !isGiven)
            faults.push_back(*fault);
        if (!fault && !text.isEmpty())
            option.Apply(p_Choice, text);
    }
    if (!p_Choice.Given.contains(QLatin1String(c_Password)))
        p_Choice.Options.ContentPassword = Value(p_Kept, QLatin1String(c_Password));
    return faults;
}

} // namespace Varnholt::Host::ConfigCommand
