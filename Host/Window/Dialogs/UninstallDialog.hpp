#pragma once

#include "Host/Window/Dialogs/Inquiry.hpp"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace Varnholt::Host {

class WrappedList;

/// What an uninstallation deletes and what stays, told before, and how it goes on. It can be
/// cancelled until the first file is removed.
class UninstallDialog : public QDialog {
    Q_OBJECT

public:
    explicit UninstallDialog(GameController& p_Game, QWidget* p_Parent = nullptr);

    /// Whether files are being removed: the dialog may be closed then, and the removal goes on.
    bool IsRemoving() const { return Removing; }

    void reject() override;

protected:
    void changeEvent(QEvent* p_Event) override;

private:
    void Build();
    void BuildButtons();
    void SetTexts();
    void Look();
    void Show(RunResult const& p_Preview);
    void Begin();
    void ShowProgress(RunSnapshot const& p_Snapshot);
    void OnRemoved(RunResult const& p_Result);
    void Enable();

    QString const Name; ///< of the game
    Inquiry Questions;
    std::optional<RunResult> Preview;
    bool Begun = false;
    bool Removing = false;

    QLabel* Explanation;
    QRadioButton* Delete;
    QRadioButton* Keep;
    QLabel* StayingLabel;
    WrappedList* Staying;
    QProgressBar* Progress;
    QPushButton* Again;
    QPushButton* Uninstall;
    QPushButton* Cancel;
};

} // namespace Varnholt::Host
