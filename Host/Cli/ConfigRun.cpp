#include "Host/Cli/ConfigRun.hpp"

#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"

namespace Varnholt::Host {

namespace {

std::optional<Failure> Show(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Output)
{
    QString const& key = p_Choice.ConfigKey;
    if (p_Choice.ConfigList) {
        for (QString const& one : ConfigCommand::Keys()) {
            GivenOption const option = ConfigCommand::InForce(p_Choice, p_Settings.All(), one);
            p_Output.ShowOption(one, option.Text, option.Origin, true);
        }
    } else if (key.isEmpty())
        for (QString const& one : ConfigCommand::SetKeys(p_Settings.All()))
            p_Output.ShowOption(one, ConfigCommand::Shown(p_Settings.All(), one), {}, true);
    else if (ConfigCommand::Keys().contains(key))
        p_Output.ShowOption(key, ConfigCommand::Shown(p_Settings.All(), key), {}, false);
    else
        return ConfigCommand::Set(p_Settings, key, {}); // tells what is known
    return std::nullopt;
}

std::optional<Failure> Set(QString const& p_Key, QString const& p_Value, HostSettings& p_Settings)
{
    if (p_Key == QLatin1String(ConfigCommand::c_Password) && !p_Value.isEmpty())
        return Failure{FailureKind::OptionInvalid, p_Key,
                       QStringLiteral("every user of the machine could read a password on the "
                                      "command line; without one it is asked for")};
    auto failure = ConfigCommand::Set(p_Settings, p_Key, p_Value);
    if (!failure && p_Key == QLatin1String("limit-rate")) {
        quint64 const rate = OptionText::Rate(p_Value).value_or(0);
        // Nothing under way is no failure: the next one reads it.
        RunFollower::Send(InstallRecord::Folders(p_Settings),
                          {ControlMessage::Type::LimitRate, rate});
    }
    return failure;
}

std::optional<Failure> AskPassword(HostSettings& p_Settings)
{
    QString const key = QLatin1String(ConfigCommand::c_Password);
    SignalWatch const signals; // one that ends the program gives the terminal its echo back
    auto const password = Prompt::Password(QStringLiteral("Password of the content server: "));
    if (SignalWatch::IsEndRequested())
        return Failure{FailureKind::Interrupted, {}, {}};
    if (password.value_or(QString()).isEmpty())
        return Failure{FailureKind::OptionInvalid, key,
                       QStringLiteral("no password was given, and \"\" removes the one kept")};
    return ConfigCommand::Set(p_Settings, key, *password);
}

} // namespace

int ConfigRun(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Output)
{
    bool const isPassword = p_Choice.ConfigKey == QLatin1String(ConfigCommand::c_Password);
    std::optional<Failure> failure;
    if (!p_Choice.ConfigValue.isNull())
        failure = Set(p_Choice.ConfigKey, p_Choice.ConfigValue, p_Settings);
    else
        failure = isPassword ? AskPassword(p_Settings) : Show(p_Choice, p_Settings, p_Output);
    return failure ? p_Output.ShowFailure(*failure) : EXIT_SUCCESS;
}

} // namespace Varnholt::Host
