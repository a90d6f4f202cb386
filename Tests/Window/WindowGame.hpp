#pragma once

#include "Host/Window/Desktop/Desktop.hpp"
#include "Host/Window/Main/MainWindow.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Support/LogCapture.hpp"

#include <QPushButton>

#include <functional>
#include <memory>

namespace Varnholt::TestSupport {

/// What a module looks like.
Host::ModuleCard CardOf(QString const& p_ModuleFile);

/// A window on a content server, with a folder of modules of its own.
class WindowHands {
public:
    explicit WindowHands(HostGame& p_Game);
    ~WindowHands();

    /// Opens the window and waits until the game in it is known.
    void Open();
    /// The same of a window on a desktop, with what the settings say of it.
    void OpenOnDesktop(bool p_HasTray);
    /// Closes it, unless that was done, and waits until all is in order.
    void Close();
    bool IsFinished() const { return HasEnded; }
    Host::MainWindow& Window() { return *Opened; }
    Host::GameController& Controller() { return Opened->Controller(); }
    Host::GameState const& State() { return Controller().State(); }
    Host::GamePage& Page() { return *Opened->Page(); }
    Host::Desktop& Desktop() { return *Around; }
    /// Of the large button, without the mark of its mnemonic.
    QString Primary();
    QPushButton& PrimaryButton();
    void Press() { PrimaryButton().click(); }
    /// The one visible button with this text, without the mark; ends the test when there is none.
    QAbstractButton& Button(QString const& p_Text);
    /// The text of a label of the page by its object name; null when it is not shown.
    QString Text(char const* p_Name);
    void Install();
    void DropModule(QString const& p_ModuleFile);

    [[nodiscard]] bool WaitUntil(std::function<bool()> const& p_Condition);
    [[nodiscard]] bool WaitForPrimary(QString const& p_Text);

    Host::HostOptions Options;
    LogCapture Log;

private:
    HostGame& Game;
    QString const Modules;
    void Make();
    void WaitForGame();

    std::unique_ptr<Host::MainWindow> Opened;
    Host::Language Texts;
    std::unique_ptr<Host::Desktop> Around;
    bool HasEnded = false;
};

/// A plain game and a window on it.
class WindowGame : public HostGame, public WindowHands {
public:
    WindowGame()
        : WindowHands(static_cast<HostGame&>(*this))
    {
    }
};

/// A game that was installed and runs as long as it is let, and a window on it.
class PlayedWindowGame : public PlayedGame, public WindowHands {
public:
    PlayedWindowGame()
        : WindowHands(static_cast<HostGame&>(*this))
    {
    }
};

} // namespace Varnholt::TestSupport
