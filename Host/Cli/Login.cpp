#include "Host/Cli/Login.hpp"

#include "Host/Cli/PasswordStore.hpp"
#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"

#include <QCryptographicHash>

namespace Varnholt::Host {

Login::Login(Choice const& p_Choice, QString const& p_Server, HostSettings& p_Settings,
             Presenter& p_Output)
    : Chosen(p_Choice)
    , Settings(p_Settings)
    , Output(p_Output)
    , Key(QStringLiteral("%1 at %2").arg(p_Choice.Request.Argument, p_Server))
    , Mark(QStringLiteral("remembered/") +
           QString::fromLatin1(
               QCryptographicHash::hash(Key.toUtf8(), QCryptographicHash::Sha256).toHex()))
{
}

QString Login::Password()
{
    if (!Chosen.Remembers && !Chosen.Forgets) {
        QString remembered = Remembered();
        if (!remembered.isEmpty() || SignalWatch::IsEndRequested())
            return remembered;
    }
    if (Chosen.Forgets)
        Forget();
    QString password = Asked();
    if (Chosen.Remembers && !password.isEmpty())
        Remember(password);
    return password;
}

QString Login::Remembered()
{
    if (!Settings.Value(Mark).toBool())
        return {};
    PasswordStore::Answer const answer = PasswordStore::Read(Key);
    if (!answer.Problem.isEmpty())
        Output.ShowNotice({NoticeKind::PasswordUnreadable, answer.Problem});
    return answer.Password;
}

QString Login::Asked()
{
    auto const password =
        Prompt::Password(QStringLiteral("Password of %1: ").arg(Chosen.Request.Argument));
    return password.value_or(QString());
}

void Login::Remember(QString const& p_Password)
{
    QString const problem = PasswordStore::Write(Key, p_Password);
    if (!problem.isEmpty())
        return Output.ShowNotice({NoticeKind::PasswordNotRemembered, problem});
    Settings.SetValue(Mark, true);
    if (auto const failure = Settings.Save())
        Output.ShowNotice({NoticeKind::PasswordNotRemembered, failure->Sentence()});
}

void Login::Forget()
{
    QString const problem = PasswordStore::Remove(Key);
    if (!problem.isEmpty())
        return Output.ShowNotice({NoticeKind::PasswordNotForgotten, problem});
    Settings.Remove(Mark);
}

} // namespace Varnholt::Host
