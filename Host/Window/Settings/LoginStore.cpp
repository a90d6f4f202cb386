#include "Host/Window/Settings/LoginStore.hpp"

namespace Varnholt::Host {

LoginStore::LoginStore(QString const& p_AppId, QString p_Server, QString p_SettingsFile,
                       QObject* p_Parent)
    : QObject(p_Parent)
    , AccountKey(QStringLiteral("window/login-%1/account").arg(p_AppId))
    , AsksKey(QStringLiteral("window/login-%1/asks").arg(p_AppId))
    , Server(std::move(p_Server))
    , SettingsFile(std::move(p_SettingsFile))
    , Settings(SettingsFile)
{
    connect(&Settings, &AsyncSettings::WasRead, this, &LoginStore::OnSettings);
    connect(&Settings, &AsyncSettings::Written, this,
            [this](std::optional<Failure> const& p_Failure) {
                if (p_Failure)
                    Q_EMIT Noticed({NoticeKind::PasswordNotRemembered, p_Failure->Sentence()});
            });
}

LoginStore::~LoginStore() = default;

/// The store is asked by an object of its own for each request, which goes when it has answered.
void LoginStore::Ask(QString const& p_Account, Request const& p_Request, OnAnswer p_OnAnswer)
{
    auto* const store = new AccountPassword(p_Account, Server, SettingsFile, this);
    connect(store, &AccountPassword::Answered, this,
            [store, onAnswer = std::move(p_OnAnswer)](AccountPassword::Answer const& p_Answer) {
                store->deleteLater();
                onAnswer(p_Answer);
            });
    p_Request(*store);
}

void LoginStore::Read()
{
    Settings.Read();
}

void LoginStore::OnSettings(SettingsFile::Values const& p_Values)
{
    Login login;
    login.Account = p_Values.value(AccountKey).toString();
    login.Asks = p_Values.value(AsksKey, true).toBool();
    if (login.Account.isEmpty()) {
        Q_EMIT WasRead(login);
        return;
    }
    Ask(
        login.Account, [](AccountPassword& p_Store) { p_Store.Read(); },
        [this, login](AccountPassword::Answer const& p_Answer) mutable {
            if (!p_Answer.Problem.isEmpty())
                Q_EMIT Noticed({NoticeKind::PasswordUnreadable, p_Answer.Problem});
            login.Password = p_Answer.Password;
            login.Asks = login.Asks || login.Password.isEmpty();
            Q_EMIT WasRead(login);
        });
}

void LoginStore::Remember(Login const& p_Login)
{
    Settings.Write(
        {{AccountKey, p_Login.Account.isEmpty() ? QVariant() : p_Login.Account}, {AsksKey, false}});
    if (p_Login.Account.isEmpty() || p_Login.Password.isEmpty())
        return;
    Ask(
        p_Login.Account, [&](AccountPassword& p_Store) { p_Store.Remember(p_Login.Password); },
        [this](AccountPassword::Answer const& p_Answer) {
            if (!p_Answer.Problem.isEmpty())
                Q_EMIT Noticed({NoticeKind::PasswordNotRemembered, p_Answer.Problem});
        });
}

void LoginStore::ForgetAccount(QString const& p_Account)
{
    Settings.Write({{AccountKey, QVariant()}});
    Forget(p_Account);
}

void LoginStore::Forget(QString const& p_Account)
{
    Settings.Write({{AsksKey, QVariant()}});
    if (p_Account.isEmpty())
        return;
    Ask(
        p_Account, [](AccountPassword& p_Store) { p_Store.Forget(); },
        [this](AccountPassword::Answer const& p_Answer) {
            if (!p_Answer.Problem.isEmpty())
                Q_EMIT Noticed({NoticeKind::PasswordNotForgotten, p_Answer.Problem});
        });
}

} // namespace Varnholt::Host
