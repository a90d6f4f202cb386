#include "Host/Window/Pages/GamePage.hpp"

#include "Host/Window/Pages/Diagnosis.hpp"
#include "Host/Window/Pages/HistoryView.hpp"
#include "Host/Window/Pages/IdleText.hpp"
#include "Host/Window/Pages/PageMenu.hpp"
#include "Host/Window/Pages/PrimaryAction.hpp"
#include "Host/Window/Pages/ProgressBox.hpp"
#include "Host/Window/Pages/TroubleStrip.hpp"
#include "Host/Window/Style/ElidedLabel.hpp"
#include "Host/Window/Style/Glyph.hpp"
#include "Host/Window/Style/PageSheet.hpp"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace Varnholt::Host {

namespace {

QString WithShortcut(QString const& p_Text, QToolButton const& p_Button)
{
    return QStringLiteral("%1 (%2)").arg(p_Text,
                                         p_Button.shortcut().toString(QKeySequence::NativeText));
}

/// Whether it is worth to be told: a server may take a moment.
bool IsLong(ServerWait const& p_Wait)
{
    constexpr qint64 c_Seconds = 3;

    return p_Wait.IsRetry() || p_Wait.Silent >= c_Seconds;
}

} // namespace

GamePage::GamePage(ModuleCard const& p_Card, QWidget* p_Parent)
    : QWidget(p_Parent)
    , Game(p_Card)
    , Picture(p_Card.Background, p_Card.Placement, p_Card.Palette.Ground)
    , Trouble(new TroubleStrip(p_Card.Palette))
    , Entries(new PageMenu(this))
{
    constexpr int c_Margin = 24;
    constexpr int c_Spacing = 12;

    setStyleSheet(PageSheet(Game.Palette));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(c_Margin, c_Margin, c_Margin, c_Margin);
    layout->setSpacing(c_Spacing);
    layout->addStretch();
    layout->addWidget(Trouble);
    layout->addWidget(MakePanel());
    connect(Trouble, &TroubleStrip::Requested, this, &GamePage::Requested);
    connect(Trouble, &TroubleStrip::Dismissed, this, [this] {
        if (!std::exchange(Told, {}).isEmpty())
            return ShowTrouble();
        Q_EMIT ProblemRead();
    });
    connect(Entries, &PageMenu::Requested, this, &GamePage::Requested);
    connect(Entries, &PageMenu::LanguageChosen, this, &GamePage::LanguageChosen);
    Translate();
}

QWidget* GamePage::MakePanel()
{
    auto* const panel = new QFrame;
    panel->setObjectName(QStringLiteral("panel"));
    History = new HistoryView;
    History->hide();
    Progress = new ProgressBox(Game.Palette);
    auto* const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(24, 18, 24, 18);
    layout->setSpacing(12);
    layout->addWidget(History);
    layout->addWidget(Progress);
    layout->addLayout(MakeRow());
    return panel;
}

QHBoxLayout* GamePage::MakeRow()
{
    MakeButtons();
    auto* const name = new ElidedLabel;
    name->setObjectName(QStringLiteral("name"));
    name->setText(Game.Name);
    Idle = new ElidedLabel;
    Idle->setObjectName(QStringLiteral("idle"));
    Idle->setProperty("quiet", true);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(name);
    texts->addWidget(Idle);
    texts->addWidget(Progress->Figures());
    auto* const row = new QHBoxLayout;
    row->setSpacing(10);
    row->addLayout(texts, 1);
    row->addWidget(Progress->Graph());
    row->addSpacing(4);
    row->addWidget(Primary);
    row->addWidget(Pause);
    row->addWidget(More);
    return row;
}

void GamePage::MakeButtons()
{
    constexpr int c_PrimaryWidth = 210;
    constexpr int c_PrimaryHeight = 56;
    constexpr QSize c_GlyphSize(24, 24);

    Primary = new QPushButton;
    Primary->setObjectName(QStringLiteral("primary"));
    Primary->setMinimumWidth(c_PrimaryWidth);
    Primary->setFixedHeight(c_PrimaryHeight);
    Pause = new QToolButton;
    More = new QToolButton;
    More->setIcon(GlyphIcon(Glyph::More, Game.Palette.Text));
    More->setPopupMode(QToolButton::InstantPopup);
    More->setMenu(Entries);
    for (QToolButton* const button : {Pause, More}) {
        button->setIconSize(c_GlyphSize);
        button->setFixedSize(c_PrimaryHeight * 4 / 5, c_PrimaryHeight);
        button->setFocusPolicy(Qt::StrongFocus);
    }
    Pause->setShortcut(Qt::Key_F9); // they show no letters, and each language has others
    More->setShortcut(Qt::Key_F10);
    connect(Primary, &QPushButton::clicked, this, [this] {
        if (auto const command = PrimaryAction::Of(State).Command)
            Q_EMIT Requested(*command);
    });
    connect(Pause, &QToolButton::clicked, this, [this] {
        Q_EMIT Requested(State.IsPaused ? PageCommand::Resume : PageCommand::Pause);
    });
}

void GamePage::Show(GameState const& p_State)
{
    bool const isOtherJob = p_State.Job.has_value() != State.Job.has_value();
    if (isOtherJob) {
        Progress->Reset();
        Told.clear();
    }
    State = p_State;
    bool const isJob = State.Job.has_value();
    if (isJob)
        Progress->Show(State.Snapshot, State.IsPaused);
    else
        Idle->setText(IdleText(State));
    Progress->setVisible(isJob);
    Progress->Figures()->setVisible(isJob);
    Progress->Graph()->setVisible(isJob);
    Idle->setVisible(!isJob);
    ShowButtons();
    ShowTrouble();
    Entries->Show(State);
}

void GamePage::ShowButtons()
{
    PrimaryAction const action = PrimaryAction::Of(State);
    Primary->setText(action.Text);
    Primary->setEnabled(action.Command.has_value());
    bool const canPause = State.Job && CanPause(State.Job->Kind);
    Pause->setVisible(canPause);
    Pause->setIcon(GlyphIcon(State.IsPaused ? Glyph::Resume : Glyph::Pause, Game.Palette.Text));
    QString const text = CommandText(State.IsPaused ? PageCommand::Resume : PageCommand::Pause)
                             .remove(QLatin1Char('&'));
    Pause->setAccessibleName(text);
    Pause->setToolTip(WithShortcut(text, *Pause));
}

void GamePage::ShowTrouble()
{
    if (!Told.isEmpty())
        Trouble->ShowText(Told);
    else if (State.Problem)
        Trouble->ShowFailure(*State.Problem, State.GivenUp);
    else if (State.Job && State.Snapshot.Wait && IsLong(*State.Snapshot.Wait))
        Trouble->ShowWait(*State.Snapshot.Wait);
    else
        Trouble->hide();
}

void GamePage::Tell(QString const& p_Sentence)
{
    Told = p_Sentence;
    ShowTrouble();
}

void GamePage::Add(HistoryEntry const& p_Entry)
{
    History->Add(p_Entry);
}

void GamePage::ToggleHistory()
{
    History->setVisible(!History->isVisible());
}

void GamePage::FocusPrimary()
{
    Primary->setFocus();
}

QString GamePage::Diagnosis(ModuleInfo const& p_Module) const
{
    return DiagnosisText(p_Module, State, History->Lines());
}

void GamePage::Translate()
{
    More->setAccessibleName(tr("More"));
    More->setToolTip(WithShortcut(tr("More"), *More));
    History->setAccessibleName(tr("History"));
    Progress->Translate();
    Entries->Translate();
    Show(State);
}

void GamePage::paintEvent(QPaintEvent*)
{
    QPainter(this).drawPixmap(0, 0, Picture.For(size(), devicePixelRatioF()));
}

void GamePage::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        Translate();
    QWidget::changeEvent(p_Event);
}

} // namespace Varnholt::Host
