#pragma once

#include "Tests/Host/HostGame.hpp"
#include "Tests/Screen/Screen.hpp"

#include <functional>

namespace Varnholt::TestSupport {

/// A game that can be played, not installed yet, and the window's program on a screen.
class ScreenGame : public HostGame {
public:
    explicit ScreenGame(QSize const& p_Size, QString const& p_Language = QStringLiteral("enUS"));
    ~ScreenGame();

    Screen& On() { return Shown; }
    /// Starts the program and waits for its window, which has this title.
    [[nodiscard]] bool Open(QStringList const& p_Options = {}, QString const& p_Title = c_Name);
    /// Starts the program as a process of the test's own.
    void Start(QProcess& p_Program, QString const& p_Settings,
               QStringList const& p_Options = {}) const;
    /// Ends it without a word.
    void Kill();
    /// Closes its window. \return how it ended; -1 when it did not
    int Close();
    /// Gives the keyboard to the window or dialog with this title and presses the keys.
    [[nodiscard]] bool Press(QString const& p_Title, QStringList const& p_Keys);
    /// Waits until the main window has this title, the whole of it.
    [[nodiscard]] bool WaitForTitle(QString const& p_Title);
    [[nodiscard]] static bool WaitUntil(std::function<bool()> const& p_Condition);
    /// Lets the game run on when it is started, until `LetGo`.
    void KeepRunning() const { Put(QString(c_Program) + ".run", "x"); }
    void LetGo() const;
    int Starts() const { return Read(QString(c_Program) + ".starts").count('\n'); }

    QString Home; ///< of the program's user; empty: one in the game's own folder

    static constexpr char c_Name[] = "Mists of Pandaria";
    static constexpr char c_Program[] = "Game.app/Contents/MacOS/World of Warcraft";

private:
    Screen Shown;
    QProcess Program;
};

} // namespace Varnholt::TestSupport
