#include "Host/Cli/PasswordStore.hpp"

#include <QEventLoop>
#include <qt5keychain/keychain.h>

namespace Varnholt::Host::PasswordStore {

namespace {

QString const c_Service = QStringLiteral("Varnholt");

QString ProblemOf(QKeychain::Job const& p_Job)
{
    if (p_Job.error() == QKeychain::NoError || p_Job.error() == QKeychain::EntryNotFound)
        return {};
    QString const cause = p_Job.errorString();
    return cause.isEmpty() ? QStringLiteral("the secret store gives no reason") : cause;
}

/// Takes a job that deletes itself: one that is not waited for to its end must stay, for the store
/// still answers it.
Answer Run(QKeychain::Job* p_Job, QString const& p_Key)
{
    Answer answer{{}, QStringLiteral("the secret store was not waited for")};
    QEventLoop loop;
    QObject::connect(p_Job, &QKeychain::Job::finished, &loop, [&](QKeychain::Job* p_Finished) {
        answer.Problem = ProblemOf(*p_Finished);
        if (auto const* const reading = qobject_cast<QKeychain::ReadPasswordJob*>(p_Finished))
            answer.Password = reading->textData();
        loop.quit();
    });
    p_Job->setKey(p_Key);
    p_Job->start();
    loop.exec();
    return answer;
}

} // namespace

Answer Read(QString const& p_Key)
{
    return Run(new QKeychain::ReadPasswordJob(c_Service), p_Key);
}

QString Write(QString const& p_Key, QString const& p_Password)
{
    auto* const job = new QKeychain::WritePasswordJob(c_Service);
    job->setTextData(p_Password);
    return Run(job, p_Key).Problem;
}

QString Remove(QString const& p_Key)
{
    return Run(new QKeychain::DeletePasswordJob(c_Service), p_Key).Problem;
}

} // namespace Varnholt::Host::PasswordStore
