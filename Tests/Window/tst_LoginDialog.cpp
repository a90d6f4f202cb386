#include "Host/Window/Dialogs/LoginDialog.hpp"
#include "Tests/Host/SecretService.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QAccessible>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

#include <csignal>

namespace Varnholt::TestSupport {

using Host::LoginDialog;
using Host::LoginStore;

/// Account and password, asked for and remembered.
class LoginDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void WhatIsTypedLogsIn();
    void ItIsRememberedWhereItIsSafe();
    void WhatIsRememberedIsNeverShown();
    void ItIsForgottenWhenThePlayerSaysSo();
    void PlayingWithoutAnAccountIsRememberedToo();
    void TheAccountIsForgottenWithoutAGame();

private:
    /// A dialog over what is remembered, filled in; accepted by the button that begins so.
    Host::RunRequest Answer(QString const& p_Account, QString const& p_Password, bool p_Remember,
                            QString const& p_Button = "Play");
    LoginStore::Login Remembered();
    static QPushButton* Button(QDialog const& p_Dialog, QString const& p_Text);

    QString const Secret = QStringLiteral("S3cret phrase");
    std::unique_ptr<SecretService> Service;
    QTemporaryDir Folder;
    std::unique_ptr<LoginStore> Store;
    LogCapture Log;
};

void LoginDialogTest::initTestCase()
{
    Service = std::make_unique<SecretService>();
    if (!Service->Problem().isEmpty())
        QSKIP(qPrintable(Service->Problem()));
    std::signal(SIGTERM, SIG_IGN); // that the store's client ends a process by when its bus goes
    Store =
        std::make_unique<LoginStore>("app", "http://content.example/", Folder.filePath("host.ini"));
}

LoginStore::Login LoginDialogTest::Remembered()
{
    std::optional<LoginStore::Login> login;
    auto const listening = connect(Store.get(), &LoginStore::WasRead, this,
                                   [&](LoginStore::Login const& p_Login) { login = p_Login; });
    Store->Read();
    if (!QTest::qWaitFor([&] { return login.has_value(); }, TestHost::c_Timeout))
        qFatal("the login is not told");
    disconnect(listening);
    return *login;
}

QPushButton* LoginDialogTest::Button(QDialog const& p_Dialog, QString const& p_Text)
{
    for (QPushButton* const button : p_Dialog.findChildren<QPushButton*>())
        if (button->text().remove('&') == p_Text)
            return button;
    return nullptr;
}

Host::RunRequest LoginDialogTest::Answer(QString const& p_Account, QString const& p_Password,
                                         bool p_Remember, QString const& p_Button)
{
    LoginDialog dialog(*Store, "Game", Remembered());
    auto const fields = dialog.findChildren<QLineEdit*>();
    if (!p_Account.isNull())
        fields[0]->setText(p_Account);
    fields[1]->setText(p_Password);
    dialog.findChild<QCheckBox*>()->setChecked(p_Remember);
    Button(dialog, p_Button)->click();
    return dialog.result() == QDialog::Accepted ? dialog.Request() : Host::RunRequest();
}

void LoginDialogTest::WhatIsTypedLogsIn()
{
    Host::RunRequest const request = Answer("me", Secret, false);
    QCOMPARE(request.Kind, Host::RunRequest::Type::Play);
    QCOMPARE(request.Argument, QString("me"));
    QCOMPARE(request.Password, Secret);
    QVERIFY(Remembered().Asks);
    QVERIFY(Remembered().Account.isEmpty());
    QVERIFY(Answer("me", {}, false).Argument.isEmpty()); // there is no password yet
}

void LoginDialogTest::ItIsRememberedWhereItIsSafe()
{
    QCOMPARE(Answer("me", Secret, true).Password, Secret);
    QTRY_COMPARE(Remembered().Password, Secret);
    QVERIFY(!Remembered().Asks);
    QCOMPARE(Remembered().Account, QString("me"));
    QVERIFY(!ReadFile(Folder.filePath("host.ini")).contains(Secret.toUtf8()));
    QCOMPARE(Log.Texts().filter(Secret), QStringList());
}

void LoginDialogTest::WhatIsRememberedIsNeverShown()
{
    LoginDialog const dialog(*Store, "Game", Remembered());
    auto* const password = dialog.findChildren<QLineEdit*>()[1];
    QCOMPARE(password->text(), QString());
    QCOMPARE(password->placeholderText(), QString("remembered"));
    QCOMPARE(dialog.Request().Password, Secret);
    password->setText("typed");
    QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(password);
    QVERIFY(!access->text(QAccessible::Value).contains("typed"));
    QVERIFY(!password->grab().isNull() && password->echoMode() == QLineEdit::Password);
    dialog.findChildren<QLineEdit*>()[0]->setText("you"); // has another one
    QCOMPARE(password->placeholderText(), QString());
}

void LoginDialogTest::ItIsForgottenWhenThePlayerSaysSo()
{
    QCOMPARE(Answer({}, {}, false).Password, Secret);
    QTRY_VERIFY(Remembered().Password.isEmpty());
    QVERIFY(Remembered().Asks);
    QCOMPARE(Remembered().Account, QString("me"));
}

void LoginDialogTest::PlayingWithoutAnAccountIsRememberedToo()
{
    Host::RunRequest const request = Answer({}, {}, true, "Play without logging in");
    QCOMPARE(request.Kind, Host::RunRequest::Type::Play);
    QVERIFY(request.Argument.isEmpty() && request.Password.isEmpty());
    QTRY_VERIFY(!Remembered().Asks);
    QVERIFY(Remembered().Account.isEmpty());
}

void LoginDialogTest::TheAccountIsForgottenWithoutAGame()
{
    QCOMPARE(Answer("me", Secret, true).Password, Secret);
    QTRY_COMPARE(Remembered().Password, Secret);
    QCOMPARE(Answer({}, {}, true, "Forget").Argument, QString());
    QTRY_VERIFY(Remembered().Asks);
    QCOMPARE(Remembered().Account, QString());
    QTRY_COMPARE(Answer("me", {}, true).Password, QString()); // nor by its name
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LoginDialogTest)
#include "tst_LoginDialog.moc"
