#pragma once

#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Window/Settings/LoginStore.hpp"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace Varnholt::Host {

/// Who logs in to the game. A password that is remembered is used unseen, also in its length.
class LoginDialog : public QDialog {
    Q_OBJECT

public:
    /// \param p_Store must outlive the dialog; it is told what the user wants remembered
    /// \param p_Login what it remembers
    LoginDialog(LoginStore& p_Store, QString const& p_Game, LoginStore::Login const& p_Login,
                QWidget* p_Parent = nullptr);

    /// What to start when the dialog was accepted.
    RunRequest Request() const;

    void accept() override;

protected:
    void changeEvent(QEvent* p_Event) override;

private:
    void Build();
    void SetTexts();
    void Enable();
    bool HasRemembered() const;
    void Keep() const;

    LoginStore& Store;
    QString const Game;
    LoginStore::Login const Known;
    bool WithoutLogin = false;

    QLabel* Explanation;
    QLabel* AccountLabel;
    QLineEdit* Account;
    QLabel* PasswordLabel;
    QLineEdit* Password;
    QCheckBox* Remember;
    QPushButton* Play;
    QPushButton* Without;
    QPushButton* Forget;
    QPushButton* Cancel;
};

} // namespace Varnholt::Host
