#include "Host/Window/Dialogs/UninstallDialog.hpp"

#include "Host/Core/Folder/FileAmount.hpp"
#include "Host/Window/Dialogs/DialogParts.hpp"
#include "Host/Window/Style/WrappedList.hpp"

#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace Varnholt::Host {

UninstallDialog::UninstallDialog(GameController& p_Game, QWidget* p_Parent)
    : QDialog(p_Parent)
    , Name(p_Game.Info().Name)
    , Questions(p_Game)
{
    setObjectName(QStringLiteral("UninstallDialog"));
    Build();
    SetTexts();
    connect(&Questions, &Inquiry::Progressed, this, &UninstallDialog::ShowProgress);
    for (QRadioButton* const choice : {Delete, Keep})
        connect(choice, &QRadioButton::toggled, this, &UninstallDialog::Enable);
    connect(Again, &QPushButton::clicked, this, &UninstallDialog::Look);
    connect(Uninstall, &QPushButton::clicked, this, &UninstallDialog::Begin);
    connect(Cancel, &QPushButton::clicked, this, &UninstallDialog::reject);
    Look();
}

void UninstallDialog::Build()
{
    constexpr int c_Lines = 5;
    constexpr int c_BarHeight = 6;

    QVBoxLayout& body = DialogParts::Begin(*this);
    Explanation = DialogParts::AddText(body);
    Delete = new QRadioButton(this);
    Keep = new QRadioButton(this);
    Delete->setChecked(true);
    StayingLabel = new QLabel(this);
    Staying = new WrappedList(this);
    Staying->setSelectionMode(QAbstractItemView::NoSelection);
    Staying->setMinimumHeight(fontMetrics().lineSpacing() * c_Lines);
    StayingLabel->setBuddy(Staying);
    Progress = new QProgressBar(this);
    Progress->setFixedHeight(c_BarHeight);
    Progress->setTextVisible(false); // the page beside it tells more
    Again = new QPushButton(this);
    for (QWidget* const widget : std::initializer_list<QWidget*>{Delete, Keep, StayingLabel})
        body.addWidget(widget);
    body.addWidget(Staying, 1);
    body.addWidget(Progress);
    body.addWidget(Again, 0, Qt::AlignLeft);
    body.addStretch();
    BuildButtons();
}

void UninstallDialog::BuildButtons()
{
    auto* const buttons = new QDialogButtonBox(this);
    Uninstall = buttons->addButton(QString(), QDialogButtonBox::DestructiveRole);
    Cancel = buttons->addButton(QString(), QDialogButtonBox::RejectRole);
    for (QPushButton* const button : {Again, Uninstall})
        button->setAutoDefault(false); // what deletes is no answer to a hasty Enter
    Cancel->setDefault(true);
    layout()->addWidget(buttons);
}

void UninstallDialog::SetTexts()
{
    setWindowTitle(tr("Uninstall %1").arg(Name));
    Keep->setText(tr("&Keep all files, and only forget the installation"));
    Staying->setAccessibleName(tr("Files that stay"));
    Progress->setAccessibleName(tr("Progress of the removal"));
    Again->setText(tr("&Try again"));
    Uninstall->setText(tr("&Uninstall"));
    Enable();
}

void UninstallDialog::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        SetTexts();
    QDialog::changeEvent(p_Event);
}

void UninstallDialog::Look()
{
    RunRequest request;
    request.Kind = RunRequest::Type::PreviewUninstall;
    Preview.reset();
    Questions.Ask(request, [this](RunResult const& p_Preview) { Show(p_Preview); });
    Enable();
}

void UninstallDialog::Show(RunResult const& p_Preview)
{
    Preview = p_Preview;
    Staying->clear();
    for (QString const& file : p_Preview.Staying)
        Staying->addItem(QDir::toNativeSeparators(file));
    if (p_Preview.Problem)
        Keep->setChecked(true); // for that nobody has to be asked
    Enable();
}

void UninstallDialog::Begin()
{
    RunRequest request;
    request.Kind = RunRequest::Type::Uninstall;
    request.DeletesFiles = Delete->isChecked();
    request.Confirmed = true;
    Begun = true;
    Questions.Ask(request, [this](RunResult const& p_Result) { OnRemoved(p_Result); });
    Enable();
}

void UninstallDialog::ShowProgress(RunSnapshot const& p_Snapshot)
{
    if (!Begun)
        return;
    Removing = Removing || p_Snapshot.Phase == RunPhase::Uninstalling;
    Progress->setMaximum(static_cast<int>(p_Snapshot.FileCount));
    Progress->setValue(static_cast<int>(p_Snapshot.FileNumber));
    Enable();
}

void UninstallDialog::OnRemoved(RunResult const& p_Result)
{
    Begun = Removing = false;
    if (!p_Result.Problem || p_Result.Problem->Kind == FailureKind::FilesNotRemoved)
        return accept(); // what remains, the page tells
    Preview = p_Result;
    Enable();
}

void UninstallDialog::reject()
{
    if (Removing)
        Questions.Leave();
    else
        Questions.Withdraw();
    QDialog::reject();
}

/// Shows what is known, and lets only that be done which can be.
void UninstallDialog::Enable()
{
    bool const isKnown = Preview && !Preview->Problem;
    Delete->setText(isKnown ? tr("&Delete the game: %1").arg(AmountText(Preview->Amount))
                            : tr("&Delete the game's files"));
    if (Preview && Preview->Problem)
        Explanation->setText(DialogParts::Sentences(*Preview->Problem));
    else
        Explanation->setText(isKnown || Begun ? tr("What happens to the files of the game?")
                                              : tr("What belongs to the game is being found out…"));
    int const staying = Staying->count();
    StayingLabel->setText(tr("These files are not of the game and &stay (%n):", nullptr, staying));
    bool const showsStaying = isKnown && staying > 0 && Delete->isChecked();
    StayingLabel->setVisible(showsStaying);
    Staying->setVisible(showsStaying);
    Progress->setVisible(Begun);
    Again->setVisible(Preview && Preview->Problem && !Begun);
    Delete->setEnabled(isKnown && !Begun);
    Keep->setEnabled(Preview && !Begun);
    Uninstall->setEnabled(!Begun && (isKnown || (Preview && Keep->isChecked())));
    Cancel->setText(Removing ? tr("C&lose") : tr("&Cancel"));
    DialogParts::Fit(*this);
}

} // namespace Varnholt::Host
