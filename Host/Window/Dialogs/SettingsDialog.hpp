#pragma once

#include "Host/Window/Settings/WindowSettings.hpp"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace Varnholt::Host {

/// The settings of program and downloads.
class SettingsDialog : public QDialog {
    Q_OBJECT

public:
    /// \param p_DefaultServer what is asked when no other one is named
    /// \param p_HasTray whether a window can stay there
    SettingsDialog(WindowSettings const& p_Settings, QString const& p_DefaultServer, bool p_HasTray,
                   QWidget* p_Parent = nullptr);

    /// As the user wants them.
    WindowSettings Chosen() const;

protected:
    void changeEvent(QEvent* p_Event) override;

private:
    void Build();
    void BuildProgram(QFormLayout& p_Form);
    void BuildDownloads(QFormLayout& p_Form);
    void SetTexts();
    void Fill(bool p_HasTray);
    void Check();

    WindowSettings const Before;
    double ShownRate = 0; ///< what the limit looks like: an odd one is not rounded unasked

    QGroupBox* Program;
    QLabel* LanguageLabel;
    QComboBox* Language;
    QCheckBox* StartsMinimised;
    QCheckBox* StaysInTray;
    QCheckBox* Notifies;
    QGroupBox* Downloads;
    QLabel* ServerLabel;
    QLineEdit* Server;
    QLabel* Fault;
    QLabel* ChannelLabel;
    QComboBox* Channel;
    QLabel* TrustKeyLabel;
    QLineEdit* TrustKey;
    QLabel* RateLabel;
    QDoubleSpinBox* Rate;
    QLabel* ConnectionsLabel;
    QSpinBox* Connections;
    QPushButton* Save;
    QPushButton* Cancel;
};

} // namespace Varnholt::Host
