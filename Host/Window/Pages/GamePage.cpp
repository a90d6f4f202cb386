#include "Host/Window/Pages/GamePage.hpp"

#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Pages/PrimaryAction.hpp"
#include "Host/Window/Style/PageSheet.hpp"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace Varnholt::Host {

GamePage::GamePage(ModuleCard const& p_Card, QWidget* p_Parent)
    : QWidget(p_Parent)
    , Game(p_Card)
    , Picture(p_Card.Background, p_Card.Placement, p_Card.Palette.Ground)
{
    constexpr int c_Margin = 24;

    setStyleSheet(PageSheet(Game.Palette));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(c_Margin, c_Margin, c_Margin, c_Margin);
    layout->addStretch();
    layout->addWidget(MakePanel());
    Translate();
}

QWidget* GamePage::MakePanel()
{
    auto* const panel = new QFrame;
    panel->setObjectName(QStringLiteral("panel"));
    Name = new QLabel(Game.Name);
    Name->setObjectName(QStringLiteral("name"));
    Headline = new QLabel;
    Headline->setObjectName(QStringLiteral("headline"));
    Primary = new QPushButton;
    Primary->setObjectName(QStringLiteral("primary"));
    Primary->setMinimumWidth(220);
    Pause = new QToolButton;
    More = new QToolButton;
    More->setPopupMode(QToolButton::InstantPopup);
    auto* const texts = new QVBoxLayout;
    texts->addWidget(Name);
    texts->addWidget(Headline);
    auto* const layout = new QHBoxLayout(panel);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->addLayout(texts, 1);
    layout->addWidget(Primary);
    layout->addWidget(Pause);
    layout->addWidget(More);
    connect(Primary, &QPushButton::clicked, this, [this] {
        if (auto const command = PrimaryAction::Of(State).Command)
            Q_EMIT Requested(*command);
    });
    return panel;
}

void GamePage::Show(GameState const& p_State)
{
    State = p_State;
    PrimaryAction const action = PrimaryAction::Of(State);
    Primary->setText(action.Text);
    Primary->setEnabled(action.Command.has_value());
    if (State.Job)
        Headline->setText(RunText::Capitalized(PhaseText(State.Snapshot.Phase)));
    else
        Headline->setText(State.Problem ? RunText::Sentence(*State.Problem) : QString());
}

void GamePage::Add(HistoryEntry const&) {}

void GamePage::Translate()
{
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
