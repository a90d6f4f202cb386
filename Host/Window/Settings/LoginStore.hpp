#pragma once

#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Settings/AccountPassword.hpp"
#include "Host/Core/Settings/AsyncSettings.hpp"

#include <QObject>
#include <QString>

#include <functional>
#include <map>

namespace Varnholt::Host {

/// How a player logs in to a game, as it is remembered: the account in the settings, the password
/// in the desktop's secret store. Requests return at once.
class LoginStore : public QObject {
    Q_OBJECT

public:
    struct Login {
        QString Account;  ///< empty: none
        QString Password; ///< empty: none is remembered
        bool Asks = true; ///< before the game starts
    };

    /// \param p_AppId of the game
    /// \param p_Server base address of the content server
    LoginStore(QString const& p_AppId, QString p_Server, QString p_SettingsFile,
               QObject* p_Parent = nullptr);
    /// Waits for the settings, but for no secret store.
    ~LoginStore() override;

    /// Answered by `WasRead`.
    void Read();
    /// From now on the game starts with this login unasked, whose password may be none: as is
    /// remembered. Without an account it starts without one.
    void Remember(Login const& p_Login);
    /// From now on is asked, and no password of the account is remembered.
    void Forget(QString const& p_Account);
    /// The same, and not even the account's name.
    void ForgetAccount(QString const& p_Account);

Q_SIGNALS:
    void WasRead(Varnholt::Host::LoginStore::Login p_Login);
    /// Something was not remembered, or not forgotten.
    void Noticed(Varnholt::Host::Notice p_Notice);

private:
    using Request = std::function<void(AccountPassword&)>;
    using OnAnswer = std::function<void(AccountPassword::Answer const&)>;

    void Ask(QString const& p_Account, Request const& p_Request, OnAnswer p_OnAnswer);
    void OnSettings(SettingsFile::Values const& p_Values);

    QString const AccountKey;
    QString const AsksKey;
    QString const Server;
    QString const SettingsFile;
    AsyncSettings Settings;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::LoginStore::Login)
