#include "Host/Window/Dialogs/InstallDialog.hpp"

#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Folder/FileAmount.hpp"
#include "Host/Window/Dialogs/DialogParts.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Varnholt::Host {

InstallDialog::InstallDialog(GameController& p_Game, QString const& p_Folder, QWidget* p_Parent)
    : QDialog(p_Parent)
    , Name(p_Game.Info().Name)
    , Questions(p_Game)
{
    constexpr int c_TypingMilliseconds = 300;

    setObjectName(QStringLiteral("InstallDialog"));
    Build();
    SetTexts();
    Delay.setSingleShot(true);
    Delay.setInterval(c_TypingMilliseconds);
    connect(&Delay, &QTimer::timeout, this, &InstallDialog::Look);
    connect(Folder, &QLineEdit::textEdited, this, [this] {
        Questions.Withdraw();
        Preview.reset();
        Enable();
        Delay.start();
    });
    connect(Choose, &QPushButton::clicked, this, &InstallDialog::ChooseFolder);
    connect(Languages, QOverload<int>::of(&QComboBox::activated), this,
            [this] { ChooseLanguage(Languages->currentData().toString()); });
    connect(Inside, &QPushButton::clicked, this,
            [this] { SetFolder(FolderAdvice::Inside(Folder->text(), Name)); });
    connect(Agree, &QCheckBox::toggled, this, &InstallDialog::Enable);
    connect(Again, &QPushButton::clicked, this, &InstallDialog::Look);
    SetFolder(p_Folder.isEmpty() ? FolderAdvice::Proposal(QDir::homePath(), Name) : p_Folder);
}

QWidget* InstallDialog::FolderRow()
{
    auto* const row = new QWidget(this);
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    Folder = new QLineEdit(row);
    Choose = new QPushButton(row);
    Choose->setAutoDefault(false);
    layout->addWidget(Folder, 1);
    layout->addWidget(Choose);
    return row;
}

void InstallDialog::Build()
{
    using namespace DialogParts;

    QVBoxLayout& body = Begin(*this);
    auto* const form = new QFormLayout;
    FolderLabel = new QLabel(this);
    form->addRow(FolderLabel, FolderRow());
    FolderLabel->setBuddy(Folder);
    LanguageLabel = new QLabel(this);
    Languages = new QComboBox(this);
    form->addRow(LanguageLabel, Languages);
    LanguageLabel->setBuddy(Languages);
    AddFigure(*form, FetchLabel, Fetch);
    AddFigure(*form, FreeLabel, Free);
    AddFigure(*form, AfterLabel, After);
    body.addLayout(form);
    Warnings = AddText(body);
    Inside = new QPushButton(this);
    Inside->setAutoDefault(false);
    Again = new QPushButton(this);
    Again->setAutoDefault(false);
    for (QPushButton* const button : {Inside, Again})
        body.addWidget(button, 0, Qt::AlignLeft);
    Agree = new QCheckBox(this);
    body.addWidget(Agree);
    body.addStretch();
    auto* const buttons = new QDialogButtonBox(this);
    Install = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    Cancel = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    Install->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout()->addWidget(buttons);
}

void InstallDialog::SetTexts()
{
    setWindowTitle(tr("Install %1").arg(Name));
    FolderLabel->setText(tr("&Folder:"));
    Folder->setAccessibleName(tr("Folder of the game"));
    Choose->setText(tr("C&hoose…"));
    LanguageLabel->setText(tr("&Language:"));
    Languages->setAccessibleName(tr("Language of the game"));
    FetchLabel->setText(tr("To download:"));
    FreeLabel->setText(tr("Free now:"));
    AfterLabel->setText(tr("Free afterwards:"));
    Agree->setText(tr("Install here &all the same"));
    Again->setText(tr("&Try again"));
    Install->setText(tr("&Install"));
    Cancel->setText(tr("&Cancel"));
    Enable();
}

void InstallDialog::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        SetTexts();
    QDialog::changeEvent(p_Event);
}

RunRequest InstallDialog::Request() const
{
    RunRequest request;
    request.Kind = RunRequest::Type::Install;
    request.Argument = QDir::cleanPath(QDir::fromNativeSeparators(Folder->text().trimmed()));
    request.Confirmed = Agree->isChecked();
    return request;
}

void InstallDialog::ChooseFolder()
{
    QString start = Folder->text();
    while (!QDir(start).exists() && !QDir(start).isRoot() && !start.isEmpty())
        start = QFileInfo(start).path();
    QString const chosen =
        QFileDialog::getExistingDirectory(this, tr("Folder for %1").arg(Name), start);
    if (!chosen.isEmpty())
        SetFolder(chosen);
}

void InstallDialog::SetFolder(QString const& p_Folder)
{
    Folder->setText(QDir::toNativeSeparators(p_Folder));
    Look();
}

void InstallDialog::Look()
{
    Delay.stop();
    Preview.reset();
    Agree->setChecked(false);
    RunRequest request = Request();
    request.Kind = RunRequest::Type::PreviewInstall;
    if (QDir::isAbsolutePath(request.Argument))
        Questions.Ask(request, [this](RunResult const& p_Preview) { Show(p_Preview); });
    else
        Questions.Withdraw();
    Enable();
}

/// Sizes differ from language to language: the preview follows.
void InstallDialog::ChooseLanguage(QString const& p_Code)
{
    RunRequest request;
    request.Kind = RunRequest::Type::ChooseLocale;
    request.Argument = p_Code;
    Preview.reset();
    Questions.Ask(request, [this](RunResult const& p_Result) {
        if (p_Result.Problem)
            Show(p_Result);
        else
            Look();
    });
    Enable();
}

void InstallDialog::Show(RunResult const& p_Preview)
{
    Preview = p_Preview;
    ShowLanguages(p_Preview);
    Enable();
}

void InstallDialog::ShowLanguages(RunResult const& p_Preview)
{
    if (p_Preview.Locales.empty())
        return;
    Languages->clear();
    for (Launcher::ApplicationManifestLocale const& locale : p_Preview.Locales)
        Languages->addItem(locale.Name, locale.Tag);
    Languages->setCurrentIndex(std::max(0, Languages->findData(p_Preview.Locale)));
}

void InstallDialog::ShowRoom(RunResult const& p_Preview)
{
    QString const unknown = tr("unknown");
    Fetch->setText(AmountText(p_Preview.Amount));
    Free->setText(unknown);
    After->setText(unknown);
    if (p_Preview.Space.empty() || !p_Preview.Space.front().IsKnown())
        return;
    VolumeSpace const& space = p_Preview.Space.front(); // of the game's own folder
    Free->setText(ByteText(static_cast<quint64>(space.Free)));
    After->setText(ByteText(static_cast<quint64>(std::max<qint64>(0, space.After()))));
}

void InstallDialog::ShowAdvice()
{
    QStringList lines;
    if (Preview && Preview->Problem)
        lines += DialogParts::Sentences(*Preview->Problem);
    for (FolderAdvice::Point const& point : Advice.Points())
        lines += point.Text;
    Warnings->setText(lines.join(QLatin1Char('\n')));
    Warnings->setVisible(!lines.isEmpty());
    Inside->setText(tr("&Use the folder \"%1\" inside")
                        .arg(QFileInfo(FolderAdvice::Inside({}, Name)).fileName()));
    Inside->setVisible(Advice.IsShared());
    Again->setVisible(Preview && Preview->Problem);
    Agree->setVisible(Advice.IsPossible() && !Advice.Points().empty());
}

/// Shows what is known, and lets only that be done which can be.
void InstallDialog::Enable()
{
    bool const isKnown = Preview && !Preview->Problem;
    Advice = isKnown ? FolderAdvice(Preview->Warnings) : FolderAdvice();
    if (isKnown) {
        ShowRoom(*Preview);
    } else {
        QString const figure =
            Questions.IsUnderWay() || Delay.isActive() ? tr("being found out…") : tr("unknown");
        for (QLabel* const label : {Fetch, Free, After})
            label->setText(figure);
    }
    ShowAdvice();
    Languages->setEnabled(Languages->count() > 1);
    Install->setEnabled(isKnown && Advice.IsPossible() &&
                        (Advice.Points().empty() || Agree->isChecked()));
    DialogParts::Fit(*this);
}

} // namespace Varnholt::Host
