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
#include "Host/Window/Style/ScrollColumn.hpp"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace Varnholt::Host {

namespace {

constexpr int c_LeastForGraph = 124; ///< characters

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
    , News(new ScrollColumn)
    , History(new HistoryView)
    , Trouble(new TroubleStrip(p_Card.Palette))
    , Entries(new PageMenu(this))
{
    constexpr QSize c_Least(320, 240);

    setStyleSheet(PageSheet(Game.Palette));
    setMinimumSize(c_Least);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(MakeNews(), 1);
    layout->addWidget(MakePanel());
    Fold();
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

/// What comes and goes above the panel; it leaves the panel its place.
QWidget* GamePage::MakeNews()
{
    News->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    History->hide();
    QVBoxLayout& layout = News->Content();
    layout.setSpacing(12);
    layout.addStretch();
    layout.addWidget(History);
    layout.addWidget(Trouble);
    return News;
}

QWidget* GamePage::MakePanel()
{
    Panel = new QFrame;
    Panel->setObjectName(QStringLiteral("panel"));
    Progress = new ProgressBox(Game.Palette);
    auto* const layout = new QVBoxLayout(Panel);
    layout->addWidget(Progress);
    layout->addLayout(MakeRow());
    return Panel;
}

QBoxLayout* GamePage::MakeRow()
{
    MakeButtons();
    auto* const name = new ElidedLabel;
    name->setObjectName(QStringLiteral("name"));
    name->setText(Game.Name);
    Idle = new QLabel;
    Idle->setTextFormat(Qt::PlainText); // it may name a folder
    Idle->setWordWrap(true);
    Idle->setObjectName(QStringLiteral("idle"));
    Idle->setProperty("quiet", true);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch();
    texts->addWidget(name);
    texts->addWidget(Idle);
    texts->addWidget(Progress->Figures());
    texts->addStretch();
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addWidget(Primary);
    buttons->addWidget(Pause);
    buttons->addWidget(More);
    Row = new QBoxLayout(QBoxLayout::LeftToRight);
    Row->addLayout(texts, 1);
    Row->addWidget(Progress->Graph());
    Row->addLayout(buttons);
    Row->setAlignment(buttons, Qt::AlignVCenter); // the small ones are as high as the large one
    return Row;
}

void GamePage::MakeButtons()
{
    constexpr int c_PrimaryWidth = 210;
    constexpr int c_PrimaryHeight = 56;
    constexpr QSize c_GlyphSize(24, 24);

    Primary = new QPushButton;
    Primary->setObjectName(QStringLiteral("primary"));
    Primary->setMinimumWidth(c_PrimaryWidth);
    Primary->setMinimumHeight(c_PrimaryHeight);
    Pause = new QToolButton;
    More = new QToolButton;
    More->setIcon(GlyphIcon(Glyph::More, Game.Palette.Text));
    More->setPopupMode(QToolButton::InstantPopup);
    More->setMenu(Entries);
    for (QToolButton* const button : {Pause, More}) {
        button->setIconSize(c_GlyphSize);
        button->setFixedWidth(c_PrimaryHeight * 4 / 5);
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
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
    Progress->Graph()->setVisible(isJob && Characters() >= c_LeastForGraph);
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
    News->verticalScrollBar()->setValue(0); // it is the first
    History->scrollToBottom();
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

/// So many have room beside each other.
int GamePage::Characters() const
{
    return width() / fontMetrics().averageCharWidth();
}

/// Where there is little room, the buttons stand below the texts and the margins are slim.
void GamePage::Fold()
{
    constexpr int c_LeastForRow = 100;
    constexpr int c_LeastLines = 28;

    bool const isNarrow = Characters() < c_LeastForRow;
    bool const isSmall = isNarrow || height() < c_LeastLines * fontMetrics().lineSpacing();
    int const margin = isSmall ? 8 : 24;
    layout()->setContentsMargins(margin, margin, margin, margin);
    layout()->setSpacing(isSmall ? 8 : 12);
    Panel->layout()->setContentsMargins(isSmall ? 12 : 24, isSmall ? 10 : 18, isSmall ? 12 : 24,
                                        isSmall ? 10 : 18);
    Panel->layout()->setSpacing(isSmall ? 8 : 12);
    Row->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    Row->setSpacing(isSmall ? 8 : 14);
    Progress->Fold(isNarrow);
    Progress->Graph()->setVisible(State.Job && Characters() >= c_LeastForGraph);
    Trouble->Fold(isNarrow);
}

void GamePage::paintEvent(QPaintEvent*)
{
    QPainter(this).drawPixmap(0, 0, Picture.For(size(), devicePixelRatioF()));
}

void GamePage::resizeEvent(QResizeEvent*)
{
    Fold();
}

void GamePage::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        Translate();
    QWidget::changeEvent(p_Event);
}

} // namespace Varnholt::Host
