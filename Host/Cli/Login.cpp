#include "Host/Cli/Login.hpp"

#include "Host/Cli/Prompt.hpp"
#include "Host/Cli/SignalWatch.hpp"

#include <QEventLoop>

namespace Varnholt::Host {

Login::Login(Choice const& p_Choice, QString const& p_Server, Presenter& p_Output)
    : Chosen(p_Choice)
    , Output(p_Output)
    , Store(p_Choice.Request.Argument, p_Server, p_Choice.Options.SettingsFile)
{
}

QString Login::Password()
{
    if (!Chosen.Remembers && !Chosen.Forgets) {
        QString remembered =
            Await([this] { Store.Read(); }, NoticeKind::PasswordUnreadable).Password;
        if (!remembered.isEmpty() || SignalWatch::IsEndRequested())
            return remembered;
    }
    if (Chosen.Forgets)
        Await([this] { Store.Forget(); }, NoticeKind::PasswordNotForgotten);
    QString password = Asked();
    if (Chosen.Remembers && !password.isEmpty())
        Await([&] { Store.Remember(password); }, NoticeKind::PasswordNotRemembered);
    return password;
}

QString Login::Asked()
{
    auto const password =
        Prompt::Password(QStringLiteral("Password of %1: ").arg(Chosen.Request.Argument));
    return password.value_or(QString());
}

template <typename Request>
AccountPassword::Answer Login::Await(Request p_Request, NoticeKind p_Lament)
{
    AccountPassword::Answer answer{{}, QStringLiteral("the secret store was not waited for")};
    QEventLoop loop;
    QObject::connect(&Store, &AccountPassword::Answered, &loop,
                     [&](AccountPassword::Answer const& p_Answer) {
                         answer = p_Answer;
                         loop.quit();
                     });
    p_Request();
    loop.exec();
    if (!answer.Problem.isEmpty())
        Output.ShowNotice({p_Lament, answer.Problem});
    return answer;
}

} // namespace Varnholt::Host
