#pragma once

#include "Host/Cli/Choice.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Core/Settings/HostSettings.hpp"

#include <QString>

namespace Varnholt::Host {

/// Finds the password of the account that a game is to be started with: in the desktop's secret
/// store once it is remembered, by a question otherwise.
///
/// The settings tell that a password is remembered, never which: a store that need not be asked is
/// not, as it may ask the user to unlock it.
class Login {
public:
    /// \param p_Server base address of the content server
    Login(Choice const& p_Choice, QString const& p_Server, HostSettings& p_Settings,
          Presenter& p_Output);

    /// \return the password; empty when there is none, or when the program is told to end
    QString Password();

private:
    QString Remembered();
    QString Asked();
    void Remember(QString const& p_Password);
    void Forget();

    Choice const& Chosen;
    HostSettings& Settings;
    Presenter& Output;
    QString const Key; ///< one account may have a password on each of several servers
    /// In the settings, while the password is remembered. A digest, so that no key of the game is
    /// ever found in it: an uninstallation removes those.
    QString const Mark;
};

} // namespace Varnholt::Host
