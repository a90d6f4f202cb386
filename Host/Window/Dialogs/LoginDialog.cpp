#include "Host/Window/Dialogs/LoginDialog.hpp"

#include "Host/Window/Dialogs/DialogParts.hpp"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace Varnholt::Host {

LoginDialog::LoginDialog(LoginStore& p_Store, QString const& p_Game,
                         LoginStore::Login const& p_Login, QWidget* p_Parent)
    : QDialog(p_Parent)
    , Store(p_Store)
    , Game(p_Game)
    , Known(p_Login)
{
    setObjectName(QStringLiteral("LoginDialog"));
    Build();
    Account->setText(Known.Account);
    Remember->setChecked(!Known.Asks);
    SetTexts();
    for (QLineEdit* const field : {Account, Password})
        connect(field, &QLineEdit::textChanged, this, &LoginDialog::Enable);
    connect(Without, &QPushButton::clicked, this, [this] {
        WithoutLogin = true;
        accept();
    });
    connect(Forget, &QPushButton::clicked, this, [this] {
        Store.ForgetAccount(Known.Account);
        reject();
    });
    Forget->setVisible(!Known.Account.isEmpty() || !Known.Asks);
    if (!Known.Account.isEmpty())
        Password->setFocus();
}

void LoginDialog::Build()
{
    QVBoxLayout& body = DialogParts::Begin(*this);
    Explanation = DialogParts::AddText(body);
    auto* const form = new QFormLayout;
    Account = new QLineEdit(this);
    AccountLabel = DialogParts::AddField(*form, *Account);
    Password = new QLineEdit(this);
    Password->setEchoMode(QLineEdit::Password);
    PasswordLabel = DialogParts::AddField(*form, *Password);
    Remember = new QCheckBox(this);
    form->addRow(Remember);
    body.addLayout(form);
    body.addStretch();
    auto* const buttons = new QDialogButtonBox(this);
    Play = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    Without = buttons->addButton(QString(), QDialogButtonBox::ActionRole);
    Forget = buttons->addButton(QString(), QDialogButtonBox::ActionRole);
    Cancel = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    Without->setAutoDefault(false);
    Forget->setAutoDefault(false);
    Play->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &LoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout()->addWidget(buttons);
}

void LoginDialog::SetTexts()
{
    setWindowTitle(tr("Play %1").arg(Game));
    Explanation->setText(tr("With account and password the game logs in by itself."));
    AccountLabel->setText(tr("&Account:"));
    Account->setAccessibleName(tr("Account"));
    PasswordLabel->setText(tr("Pass&word:"));
    Password->setAccessibleName(tr("Password"));
    Remember->setText(tr("&Remember, and do not ask again"));
    Remember->setToolTip(tr("The password is kept in the desktop's secret store, and nowhere "
                            "else."));
    Play->setText(tr("&Play"));
    Without->setText(tr("Play with&out logging in"));
    Forget->setText(tr("&Forget"));
    Forget->setToolTip(tr("Account and password are not remembered any more."));
    Cancel->setText(tr("&Cancel"));
    Enable();
    DialogParts::Fit(*this);
}

void LoginDialog::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        SetTexts();
    QDialog::changeEvent(p_Event);
}

bool LoginDialog::HasRemembered() const
{
    return !Known.Password.isEmpty() && Account->text() == Known.Account;
}

void LoginDialog::Enable()
{
    Password->setPlaceholderText(HasRemembered() ? tr("remembered") : QString());
    Play->setEnabled(!Account->text().isEmpty() &&
                     (!Password->text().isEmpty() || HasRemembered()));
}

RunRequest LoginDialog::Request() const
{
    RunRequest request;
    request.Kind = RunRequest::Type::Play;
    if (WithoutLogin)
        return request;
    request.Argument = Account->text();
    request.Password = Password->text().isEmpty() ? Known.Password : Password->text();
    return request;
}

void LoginDialog::accept()
{
    Keep();
    QDialog::accept();
}

void LoginDialog::Keep() const
{
    RunRequest const request = Request();
    if (Remember->isChecked())
        Store.Remember({request.Argument, Password->text(), false});
    else if (!Known.Asks || !Known.Password.isEmpty())
        Store.Forget(Known.Account);
}

} // namespace Varnholt::Host
