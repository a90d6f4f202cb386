#pragma once

#include "Host/Window/Main/GameState.hpp"
#include "Host/Window/Main/HistoryEntry.hpp"
#include "Host/Window/Main/ModuleCard.hpp"
#include "Host/Window/Pages/PageCommand.hpp"
#include "Host/Window/Style/Artwork.hpp"

#include <QWidget>

class QLabel;
class QPushButton;
class QToolButton;

namespace Varnholt::Host {

/// The page of one game: its picture, and what happens to it on a panel. It shows states and asks
/// for commands; it decides nothing.
class GamePage : public QWidget {
    Q_OBJECT

public:
    explicit GamePage(ModuleCard const& p_Card, QWidget* p_Parent = nullptr);

    ModuleCard const& Card() const { return Game; }
    void Show(GameState const& p_State);
    void Add(HistoryEntry const& p_Entry);

Q_SIGNALS:
    void Requested(Varnholt::Host::PageCommand p_Command);

protected:
    void paintEvent(QPaintEvent* p_Event) override;
    void changeEvent(QEvent* p_Event) override;

private:
    QWidget* MakePanel();
    void Translate();

    ModuleCard const Game;
    Artwork Picture;
    GameState State;
    QLabel* Name;
    QLabel* Headline;
    QPushButton* Primary;
    QToolButton* Pause;
    QToolButton* More;
};

} // namespace Varnholt::Host
