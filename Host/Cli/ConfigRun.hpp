#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

namespace Varnholt::Host {

/// The command "config": shows, keeps and forgets options.
class ConfigRun {
public:
    ConfigRun(Choice const& p_Choice, HostSettings& p_Settings, Presenter& p_Output);

    /// \return the exit status
    int Run();

private:
    std::optional<Failure> Show();
    std::optional<Failure> Set();
    std::optional<Failure> AskPassword();
    /// Tells a download under way of its limit.
    void TellRate() const;

    Choice const& Chosen;
    HostSettings& Settings;
    Presenter& Output;
};

} // namespace Varnholt::Host
