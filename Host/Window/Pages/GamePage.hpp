#pragma once

#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Window/Main/GameState.hpp"
#include "Host/Window/Main/HistoryEntry.hpp"
#include "Host/Window/Main/ModuleCard.hpp"
#include "Host/Window/Pages/PageCommand.hpp"
#include "Host/Window/Style/Artwork.hpp"

#include <QWidget>

class QBoxLayout;
class QFrame;
class QLabel;
class QPushButton;
class QToolButton;

namespace Varnholt::Host {

class HistoryView;
class PageMenu;
class ProgressBox;
class ScrollColumn;
class TroubleStrip;

/// The page of one game: its picture, and what happens to it on a panel. It shows states and asks
/// for commands; it decides nothing.
class GamePage : public QWidget {
    Q_OBJECT

public:
    explicit GamePage(ModuleCard const& p_Card, QWidget* p_Parent = nullptr);

    ModuleCard const& Card() const { return Game; }
    PageMenu& Menu() { return *Entries; }
    void Show(GameState const& p_State);
    /// Shows a sentence of the window's own until the state is another one.
    void Tell(QString const& p_Sentence);
    void Add(HistoryEntry const& p_Entry);
    void ToggleHistory();
    /// Gives the large button the focus.
    void FocusPrimary();
    /// Everything that is known of the game, as text.
    QString Diagnosis(ModuleInfo const& p_Module) const;

Q_SIGNALS:
    void Requested(Varnholt::Host::PageCommand p_Command);
    void LanguageChosen(QString p_Tag);
    /// The user has read of the problem.
    void ProblemRead();

protected:
    void paintEvent(QPaintEvent* p_Event) override;
    void resizeEvent(QResizeEvent* p_Event) override;
    void changeEvent(QEvent* p_Event) override;

private:
    QWidget* MakeNews();
    QWidget* MakePanel();
    QBoxLayout* MakeRow();
    void MakeButtons();
    void ShowButtons();
    void ShowTrouble();
    void Translate();
    void Fold();
    int Characters() const;

    ModuleCard const Game;
    Artwork Picture;
    GameState State;
    QString Told;
    ScrollColumn* const News;
    HistoryView* const History;
    TroubleStrip* const Trouble;
    QFrame* Panel;
    QBoxLayout* Row;
    ProgressBox* Progress;
    QLabel* Idle;
    QPushButton* Primary;
    QToolButton* Pause;
    QToolButton* More;
    PageMenu* Entries;
};

} // namespace Varnholt::Host
