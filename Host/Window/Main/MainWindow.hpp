#pragma once

#include "Host/Window/Main/GameController.hpp"
#include "Host/Window/Main/ModuleFolder.hpp"
#include "Host/Window/Main/ModuleSurvey.hpp"

#include <QStackedWidget>
#include <QWidget>

#include <map>

namespace Varnholt::Host {

class CommandRunner;
class Dialogs;
class EmptyPage;
class GameColumn;
class GamePage;

/// The window: the games on the left, the page of the chosen one beside them.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    /// \param p_ModuleFolder of the modules \param p_LogFile see `CommandRunner`
    MainWindow(HostOptions const& p_Options, QString const& p_ModuleFolder,
               QString const& p_LogFile);
    ~MainWindow() override;

    GameController& Controller() { return Games; }
    Dialogs& Windows() { return *Opened; }
    /// Looks for the games; the first one is chosen.
    void Begin();
    /// The page of the chosen game; null as long as there is none.
    GamePage* Page() const { return Shown; }
    /// Whether closing the window ends the program; otherwise it only hides it, and what is under
    /// way goes on. At first: true.
    void SetEndsWhenClosed(bool p_Ends) { EndsWhenClosed = p_Ends; }
    /// Tells something of the window's own on the page, and in its history; as soon as there is a
    /// page. \param p_Text a sentence, or lines of these
    void Tell(QString const& p_Text);
    /// Hides the window at once and lets the game go; answered by `Finished`.
    void Quit();

Q_SIGNALS:
    /// All that was under way has been put in order: the program may end.
    void Finished();

protected:
    void closeEvent(QCloseEvent* p_Event) override;
    void changeEvent(QEvent* p_Event) override;

private:
    void ListenToGames();
    void ListenToModules();
    void ListenToCommands();
    void Add(ModuleCard const& p_Card);
    void Choose(QString const& p_ModuleFile);
    void Refresh();
    void Translate();

    GameController Games;
    ModuleFolder Folder;
    ModuleSurvey Survey;
    GameColumn* const Column;
    QStackedWidget* const Pages;
    EmptyPage* const Empty; ///< shown when there is no game
    Dialogs* const Opened;
    CommandRunner* const Commands;
    std::map<QString, GamePage*> Known;
    GamePage* Shown = nullptr;
    QStringList Untold; ///< until there is a page
    QString Refused;    ///< why the latest file is no game
    bool HasLooked = false;
    bool EndsWhenClosed = true;
    bool IsEnding = false;
};

} // namespace Varnholt::Host
