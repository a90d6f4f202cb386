#include "Host/Cli/Login.hpp"

#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Settings/AccountPassword.hpp"

#include <QEventLoop>

namespace Varnholt::Host {

QString LoginPassword(Choice const& p_Choice, QString const& p_Server, Presenter& p_Output)
{
    QString const& account = p_Choice.Request.Argument;
    AccountPassword store(account, p_Server, p_Choice.Options.SettingsFile);
    // Waits for the answer, or until the program is told to end.
    auto const await = [&](auto p_Request, NoticeKind p_Lament) {
        AccountPassword::Answer answer{{}, QStringLiteral("the secret store was not waited for")};
        QEventLoop loop;
        QObject::connect(&store, &AccountPassword::Answered, &loop,
                         [&](AccountPassword::Answer const& p_Answer) {
                             answer = p_Answer;
                             loop.quit();
                         });
        p_Request();
        loop.exec();
        if (!answer.Problem.isEmpty())
            p_Output.ShowNotice({p_Lament, answer.Problem});
        return answer.Password;
    };
    if (!p_Choice.Remembers && !p_Choice.Forgets) {
        QString kept = await([&] { store.Read(); }, NoticeKind::PasswordUnreadable);
        if (!kept.isEmpty() || SignalWatch::IsEndRequested())
            return kept;
    }
    if (p_Choice.Forgets)
        await([&] { store.Forget(); }, NoticeKind::PasswordNotForgotten);
    QString password =
        Prompt::Password(QStringLiteral("Password of %1: ").arg(account)).value_or(QString());
    if (p_Choice.Remembers && !password.isEmpty())
        await([&] { store.Remember(password); }, NoticeKind::PasswordNotRemembered);
    return password;
}

} // namespace Varnholt::Host
