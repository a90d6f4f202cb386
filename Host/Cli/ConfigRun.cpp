#include "Host/Cli/ConfigRun.hpp"

#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/RunFollower.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"

namespace Varnholt::Host {

ConfigRun::ConfigRun(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Output)
    : Chosen(p_Choice)
    , Settings(p_Settings)
    , Output(p_Output)
{
}

int ConfigRun::Run()
{
    bool const isPassword = Chosen.ConfigKey == QLatin1String(ConfigCommand::c_Password);
    std::optional<Failure> failure;
    if (!Chosen.ConfigValue.isNull())
        failure = Set();
    else
        failure = isPassword ? AskPassword() : Show();
    if (!failure)
        return EXIT_SUCCESS;
    Output.ShowFailure(*failure);
    return failure->ExitStatus();
}

std::optional<Failure> ConfigRun::Show()
{
    QString const& key = Chosen.ConfigKey;
    if (Chosen.ConfigList) {
        for (QString const& one : ConfigCommand::Keys()) {
            GivenOption const option = ConfigCommand::InForce(Chosen, Settings.All(), one);
            Output.ShowOption(one, option.Text, option.Origin, true);
        }
    } else if (key.isEmpty())
        for (QString const& one : ConfigCommand::SetKeys(Settings.All()))
            Output.ShowOption(one, ConfigCommand::Shown(Settings.All(), one), {}, true);
    else if (ConfigCommand::Keys().contains(key))
        Output.ShowOption(key, ConfigCommand::Shown(Settings.All(), key), {}, false);
    else
        return ConfigCommand::Set(Settings, key, {}); // tells what is known
    return std::nullopt;
}

std::optional<Failure> ConfigRun::Set()
{
    QString const& key = Chosen.ConfigKey;
    if (key == QLatin1String(ConfigCommand::c_Password) && !Chosen.ConfigValue.isEmpty())
        return Failure{FailureKind::OptionInvalid, key,
                       QStringLiteral("every user of the machine could read a password on the "
                                      "command line; without one it is asked for")};
    auto failure = ConfigCommand::Set(Settings, key, Chosen.ConfigValue);
    if (!failure && key == QLatin1String("limit-rate"))
        TellRate();
    return failure;
}

std::optional<Failure> ConfigRun::AskPassword()
{
    SignalWatch const signals; // one that ends the program gives the terminal its echo back
    auto const password = Prompt::Password(QStringLiteral("Password of the content server: "));
    if (SignalWatch::IsEndRequested())
        return Failure{FailureKind::Interrupted, {}, {}};
    if (password.value_or(QString()).isEmpty())
        return Failure{FailureKind::OptionInvalid, Chosen.ConfigKey,
                       QStringLiteral("no password was given, and \"\" removes the one kept")};
    return ConfigCommand::Set(Settings, Chosen.ConfigKey, *password);
}

void ConfigRun::TellRate() const
{
    quint64 const rate = OptionText::Rate(Chosen.ConfigValue).value_or(0);
    // Nothing under way is no failure: the next one reads it.
    RunFollower::Send(InstallRecord::Folders(Settings), {ControlMessage::Type::LimitRate, rate});
}

} // namespace Varnholt::Host
