#pragma once

#include "Host/Window/Dialogs/FolderAdvice.hpp"
#include "Host/Window/Dialogs/Inquiry.hpp"

#include <QDialog>
#include <QTimer>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace Varnholt::Host {

/// Where a game goes and in which language: what comes of it is told before anything is created.
class InstallDialog : public QDialog {
    Q_OBJECT

public:
    /// \param p_Folder to begin with; empty: one that suits the game
    InstallDialog(GameController& p_Game, QString const& p_Folder, QWidget* p_Parent = nullptr);

    /// What to start when the dialog was accepted.
    RunRequest Request() const;

protected:
    void changeEvent(QEvent* p_Event) override;

private:
    void Build();
    QWidget* FolderRow();
    void SetTexts();
    void ChooseFolder();
    void SetFolder(QString const& p_Folder);
    void Look();
    void ChooseLanguage(QString const& p_Code);
    void Show(RunResult const& p_Preview);
    void ShowLanguages(RunResult const& p_Preview);
    void ShowRoom(RunResult const& p_Preview);
    void ShowAdvice();
    void Enable();

    QString const Name; ///< of the game
    Inquiry Questions;
    QTimer Delay; ///< until a folder that is being typed is looked at
    std::optional<RunResult> Preview;
    FolderAdvice Advice;

    QLabel* FolderLabel;
    QLineEdit* Folder;
    QPushButton* Choose;
    QLabel* LanguageLabel;
    QComboBox* Languages;
    QLabel* FetchLabel;
    QLabel* Fetch;
    QLabel* FreeLabel;
    QLabel* Free;
    QLabel* AfterLabel;
    QLabel* After;
    QLabel* Warnings;
    QPushButton* Inside;
    QCheckBox* Agree;
    QPushButton* Again;
    QPushButton* Install;
    QPushButton* Cancel;
};

} // namespace Varnholt::Host
