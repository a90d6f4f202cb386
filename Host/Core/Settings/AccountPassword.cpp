#include "Host/Core/Settings/AccountPassword.hpp"

#include <QCryptographicHash>
#include <qt5keychain/keychain.h>

namespace Varnholt::Host {

namespace {

QString const c_Service = QStringLiteral("Varnholt");

QString ProblemOf(QKeychain::Job const& p_Job)
{
    if (p_Job.error() == QKeychain::NoError || p_Job.error() == QKeychain::EntryNotFound)
        return {};
    QString const cause = p_Job.errorString();
    return cause.isEmpty() ? AccountPassword::tr("the secret store gives no reason") : cause;
}

QString Digest(QString const& p_Text)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(p_Text.toUtf8(), QCryptographicHash::Sha256).toHex());
}

} // namespace

AccountPassword::AccountPassword(QString const& p_Account, QString const& p_Server,
                                 QString const& p_SettingsFile, QObject* p_Parent)
    : QObject(p_Parent)
    , Key(QStringLiteral("%1 at %2").arg(p_Account, p_Server))
    , Mark(QStringLiteral("remembered/") + Digest(Key))
    , Settings(p_SettingsFile, this)
{
    connect(&Settings, &AsyncSettings::WasRead, this, [this](SettingsFile::Values const& p_Values) {
        if (p_Values.value(Mark).toBool())
            Ask(new QKeychain::ReadPasswordJob(c_Service), true);
        else
            Q_EMIT Answered({});
    });
    connect(&Settings, &AsyncSettings::Written, this,
            [this](std::optional<Failure> const& p_Failure) {
                Q_EMIT Answered({{}, p_Failure ? p_Failure->Sentence() : QString()});
            });
}

void AccountPassword::Read()
{
    Settings.Read();
}

void AccountPassword::Remember(QString const& p_Password)
{
    auto* const job = new QKeychain::WritePasswordJob(c_Service);
    job->setTextData(p_Password);
    Ask(job, true);
}

void AccountPassword::Forget()
{
    Ask(new QKeychain::DeletePasswordJob(c_Service), false);
}

/// \param p_Job deletes itself when the store has answered, though nobody may be waiting any more
void AccountPassword::Ask(QKeychain::Job* p_Job, bool p_IsRememberedThen)
{
    connect(p_Job, &QKeychain::Job::finished, this,
            [this, p_IsRememberedThen](QKeychain::Job* p_Finished) {
                OnFinished(*p_Finished, p_IsRememberedThen);
            });
    p_Job->setKey(Key);
    p_Job->start();
}

void AccountPassword::OnFinished(QKeychain::Job const& p_Job, bool p_IsRememberedThen)
{
    QString const problem = ProblemOf(p_Job);
    auto const* const reading = qobject_cast<QKeychain::ReadPasswordJob const*>(&p_Job);
    if (reading != nullptr || !problem.isEmpty())
        Q_EMIT Answered({reading == nullptr ? QString() : reading->textData(), problem});
    else
        Settings.Write({{Mark, p_IsRememberedThen ? QVariant(true) : QVariant()}});
}

} // namespace Varnholt::Host
