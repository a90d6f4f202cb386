#include "Host/Core/Settings/AccountPassword.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <csignal>

namespace Varnholt::TestSupport {

using Host::AccountPassword;

/// Remembered passwords, as a program that does not wait for them sees them.
class AccountPasswordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void EachRequestIsAnsweredAfterItHasReturned();
    void EachAccountAndServerHasItsOwn();
    void WhatCannotBeKeptIsTold();
    void OneThatNobodyWaitsForDoesNoHarm();
    void AStoreThatIsGoneIsTold(); // the last: a process looks for it once

private:
    /// What comes of a request: the password, or "!" and the problem.
    QString Do(std::function<void(AccountPassword&)> const& p_Request,
               QString const& p_Account = QStringLiteral("me"));
    QString Read(QString const& p_Account = QStringLiteral("me"))
    {
        return Do([](AccountPassword& p_Store) { p_Store.Read(); }, p_Account);
    }
    QString Remember(QString const& p_Account, QString const& p_Password)
    {
        return Do([=](AccountPassword& p_Store) { p_Store.Remember(p_Password); }, p_Account);
    }
    QString Forget()
    {
        return Do([](AccountPassword& p_Store) { p_Store.Forget(); });
    }

    QString const Password = QStringLiteral("S3cret phrase");
    std::unique_ptr<SecretService> Store;
    QTemporaryDir Folder;
    QString File = Folder.filePath("settings/host.ini");
    QString Server = QStringLiteral("http://content.example/");
    LogCapture Log;
};

void AccountPasswordTest::initTestCase()
{
    Store = std::make_unique<SecretService>();
    if (!Store->Problem().isEmpty())
        QSKIP(qPrintable(Store->Problem()));
    // The library under the store's client ends a process by that when its bus goes.
    std::signal(SIGTERM, SIG_IGN);
}

QString AccountPasswordTest::Do(std::function<void(AccountPassword&)> const& p_Request,
                                QString const& p_Account)
{
    AccountPassword store(p_Account, Server, File);
    QStringList answers;
    connect(&store, &AccountPassword::Answered, this,
            [&answers](AccountPassword::Answer const& p_Answer) {
                answers += p_Answer.Problem.isEmpty() ? p_Answer.Password : "!" + p_Answer.Problem;
            });
    p_Request(store);
    if (!answers.isEmpty() || !QTest::qWaitFor([&] { return !answers.isEmpty(); }, 20'000))
        return QStringLiteral("answered at once, or never");
    QCoreApplication::processEvents();
    if (!Log.Texts().filter(Password).isEmpty())
        return QStringLiteral("it is in the log");
    return answers.join(QStringLiteral(" and "));
}

void AccountPasswordTest::EachRequestIsAnsweredAfterItHasReturned()
{
    QCOMPARE(Read(), QString());
    QCOMPARE(Remember("me", Password), QString());
    QCOMPARE(Read(), Password);
    QVERIFY(ReadFile(File).contains("[remembered]"));
    QVERIFY(!ReadFile(File).contains(Password.toUtf8()));
    QCOMPARE(Remember("me", "another"), QString());
    QCOMPARE(Read(), QString("another"));
    QCOMPARE(Forget(), QString());
    QVERIFY(!ReadFile(File).contains("[remembered]"));
    QCOMPARE(Read(), QString());
    QCOMPARE(Forget(), QString()); // there is none
}

void AccountPasswordTest::EachAccountAndServerHasItsOwn()
{
    QCOMPARE(Remember("me", "mine"), QString());
    QCOMPARE(Read("you"), QString());
    QCOMPARE(Remember("you", "yours"), QString());
    QCOMPARE(Read(), QString("mine"));
    Server = QStringLiteral("http://other.example/");
    QCOMPARE(Read(), QString());
    Server = QStringLiteral("http://content.example/");
    QCOMPARE(Read("you"), QString("yours"));
}

void AccountPasswordTest::WhatCannotBeKeptIsTold()
{
    QString const usual = File;
    QVERIFY(WriteFile(Folder.filePath("odd.ini"), "no settings\n"));
    File = Folder.filePath("odd.ini");
    QVERIFY(Remember("me", Password).startsWith("!the settings file " + File));
    File = usual;
}

void AccountPasswordTest::OneThatNobodyWaitsForDoesNoHarm()
{
    QCOMPARE(Remember("me", "mine"), QString());
    {
        AccountPassword store("me", Server, File);
        store.Read();
        store.Remember(Password);
    }
    QTRY_COMPARE(Read(), Password); // the store has taken it all the same
}

void AccountPasswordTest::AStoreThatIsGoneIsTold()
{
    Store->Stop();
    QVERIFY(Read().startsWith("!"));
    QVERIFY(Remember("me", Password).startsWith("!"));
    QVERIFY(Forget().startsWith("!"));
    QVERIFY(ReadFile(File).contains("[remembered]"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::AccountPasswordTest)
#include "tst_AccountPassword.moc"
