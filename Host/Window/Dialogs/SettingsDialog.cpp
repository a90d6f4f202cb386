#include "Host/Window/Dialogs/SettingsDialog.hpp"

#include "Host/Cli/OptionText.hpp"
#include "Host/Window/Dialogs/DialogParts.hpp"
#include "Launcher/Application/LauncherLocale.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cmath>

namespace Varnholt::Host {

namespace {

constexpr double c_MiB = 1024.0 * 1024.0;

} // namespace

SettingsDialog::SettingsDialog(WindowSettings const& p_Settings, QString const& p_DefaultServer,
                               bool p_HasTray, QWidget* p_Parent)
    : QDialog(p_Parent)
    , Before(p_Settings)
{
    setObjectName(QStringLiteral("SettingsDialog"));
    Build();
    Server->setPlaceholderText(p_DefaultServer);
    Fill(p_HasTray);
    SetTexts();
    for (QLineEdit* const field : {Server, TrustKey})
        connect(field, &QLineEdit::textChanged, this, &SettingsDialog::Check);
}

void SettingsDialog::Build()
{
    QVBoxLayout& body = DialogParts::Begin(*this);
    Program = new QGroupBox(this);
    Downloads = new QGroupBox(this);
    BuildProgram(*new QFormLayout(Program));
    BuildDownloads(*new QFormLayout(Downloads));
    body.addWidget(Program);
    body.addWidget(Downloads);
    Fault = DialogParts::AddText(body);
    body.addStretch();
    auto* const buttons = new QDialogButtonBox(this);
    Save = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    Cancel = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    Save->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout()->addWidget(buttons);
}

void SettingsDialog::BuildProgram(QFormLayout& p_Form)
{
    Language = new QComboBox(Program);
    LanguageLabel = DialogParts::AddField(p_Form, *Language);
    for (QCheckBox** const box : {&StartsMinimised, &StaysInTray, &Notifies}) {
        *box = new QCheckBox(Program);
        p_Form.addRow(*box);
    }
}

void SettingsDialog::BuildDownloads(QFormLayout& p_Form)
{
    constexpr double c_MostMiB = 100'000;
    constexpr int c_MostConnections = 64;

    Server = new QLineEdit(Downloads);
    ServerLabel = DialogParts::AddField(p_Form, *Server);
    Channel = new QComboBox(Downloads);
    ChannelLabel = DialogParts::AddField(p_Form, *Channel);
    TrustKey = new QLineEdit(Downloads);
    TrustKeyLabel = DialogParts::AddField(p_Form, *TrustKey);
    Rate = new QDoubleSpinBox(Downloads);
    Rate->setRange(0, c_MostMiB);
    Rate->setDecimals(2);
    RateLabel = DialogParts::AddField(p_Form, *Rate);
    Connections = new QSpinBox(Downloads);
    Connections->setRange(1, c_MostConnections);
    ConnectionsLabel = DialogParts::AddField(p_Form, *Connections);
}

void SettingsDialog::Fill(bool p_HasTray)
{
    Language->addItem(QString(), QString());
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        Language->addItem(locale.NativeName, locale.Code);
    Language->setCurrentIndex(std::max(0, Language->findData(Before.Language)));
    StartsMinimised->setChecked(Before.StartsMinimised);
    StaysInTray->setChecked(Before.StaysInTray && p_HasTray);
    StaysInTray->setEnabled(p_HasTray);
    Notifies->setChecked(Before.Notifies);
    Server->setText(Before.ContentUrl);
    Channel->addItems({QString(), QString()});
    Channel->setCurrentIndex(Before.UsesDevChannel ? 1 : 0);
    TrustKey->setText(Before.TrustKey);
    Rate->setValue(static_cast<double>(Before.BytesPerSecond) / c_MiB);
    ShownRate = Rate->value();
    Connections->setValue(Before.Connections);
}

void SettingsDialog::SetTexts()
{
    setWindowTitle(tr("Settings"));
    Program->setTitle(tr("Program"));
    LanguageLabel->setText(tr("&Language:"));
    Language->setItemText(0, tr("As the system"));
    StartsMinimised->setText(tr("Start &minimised"));
    StaysInTray->setText(tr("Go on in the &tray when the window is closed"));
    StaysInTray->setToolTip(StaysInTray->isEnabled() ? QString() : tr("This desktop has no tray."));
    Notifies->setText(tr("&Notify me when a download has ended"));
    Downloads->setTitle(tr("Downloads"));
    ServerLabel->setText(tr("Content &server:"));
    ChannelLabel->setText(tr("C&hannel:"));
    Channel->setItemText(0, tr("Release"));
    Channel->setItemText(1, tr("Development"));
    TrustKeyLabel->setText(tr("Trusted &key:"));
    TrustKey->setPlaceholderText(tr("none: signatures are not asked for"));
    RateLabel->setText(tr("Limit the &rate to:"));
    Rate->setSuffix(tr(" MiB/s"));
    Rate->setSpecialValueText(tr("no limit"));
    ConnectionsLabel->setText(tr("C&onnections:"));
    Save->setText(tr("Sa&ve"));
    Cancel->setText(tr("&Cancel"));
    for (auto const& [label, field] :
         std::initializer_list<std::pair<QLabel*, QWidget*>>{{LanguageLabel, Language},
                                                             {ServerLabel, Server},
                                                             {ChannelLabel, Channel},
                                                             {TrustKeyLabel, TrustKey},
                                                             {RateLabel, Rate},
                                                             {ConnectionsLabel, Connections}})
        field->setAccessibleName(label->text().remove(QLatin1Char('&')).chopped(1));
    Check();
}

void SettingsDialog::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        SetTexts();
    QDialog::changeEvent(p_Event);
}

void SettingsDialog::Check()
{
    QString const server = Server->text().trimmed();
    QString const key = TrustKey->text().trimmed();
    QStringList faults;
    if (!server.isEmpty() && !HostOptions::IsContentUrl(server))
        faults += tr("A server is named like http://HOST/ or https://HOST:PORT/, without user and "
                     "password.");
    if (!key.isEmpty() && OptionText::TrustKey(key).isEmpty())
        faults += tr("The trusted key is neither a public key nor a file that holds one.");
    Fault->setText(faults.join(QLatin1Char('\n')));
    Fault->setVisible(!faults.isEmpty());
    Save->setEnabled(faults.isEmpty());
    DialogParts::Fit(*this);
}

WindowSettings SettingsDialog::Chosen() const
{
    WindowSettings chosen = Before;
    chosen.Language = Language->currentData().toString();
    chosen.StartsMinimised = StartsMinimised->isChecked();
    if (StaysInTray->isEnabled())
        chosen.StaysInTray = StaysInTray->isChecked();
    chosen.Notifies = Notifies->isChecked();
    chosen.ContentUrl = Server->text().trimmed();
    chosen.UsesDevChannel = Channel->currentIndex() == 1;
    chosen.TrustKey = OptionText::TrustKey(TrustKey->text().trimmed());
    if (Rate->value() != ShownRate)
        chosen.BytesPerSecond = static_cast<quint64>(std::llround(Rate->value() * c_MiB));
    chosen.Connections = Connections->value();
    return chosen;
}

} // namespace Varnholt::Host
