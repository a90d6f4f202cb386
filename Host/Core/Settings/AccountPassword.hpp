#pragma once

#include "Host/Core/Settings/AsyncSettings.hpp"

#include <QObject>
#include <QString>

namespace QKeychain {
class Job;
}

namespace Varnholt::Host {

/// The password of an account that the desktop's secret store remembers, the one place where it
/// outlives the program. Requests return at once, and one at a time is answered by `Answered`: the
/// user may have to unlock the store first.
///
/// The settings tell that a password is remembered, never which: a store that need not be asked is
/// not.
class AccountPassword : public QObject {
    Q_OBJECT

public:
    struct Answer {
        QString Password; ///< that was asked for; empty: none is remembered
        QString Problem;  ///< why it was not done, or is not known; empty when it was
    };

    /// \param p_Server base address of the content server: one account may have a password on each
    /// of several
    AccountPassword(QString const& p_Account, QString const& p_Server,
                    QString const& p_SettingsFile, QObject* p_Parent = nullptr);

    void Read();
    void Remember(QString const& p_Password);
    void Forget();

Q_SIGNALS:
    void Answered(Varnholt::Host::AccountPassword::Answer p_Answer);

private:
    void Ask(QKeychain::Job* p_Job, bool p_IsRememberedThen);
    void OnFinished(QKeychain::Job const& p_Job, bool p_IsRememberedThen);

    QString const Key;
    /// In the settings, while the password is remembered. A digest, so that no key of the game is
    /// ever found in it: an uninstallation removes those.
    QString const Mark;
    AsyncSettings Settings;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::AccountPassword::Answer)
