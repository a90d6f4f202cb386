#pragma once

#include "Tests/Host/HostProcess.hpp"

namespace Varnholt::TestSupport {

/// A complete game whose executable is a script that tells how it was started and runs until it is
/// let go.
class PlayedGame : public HostGame {
public:
    static constexpr qint32 c_ExecutableFlags = 0x02 | 0x04 | 0x08; ///< of either platform

    PlayedGame();
    /// Has another program for the game. \param p_Flags of its entry in the build
    explicit PlayedGame(QByteArray const& p_Program, qint32 p_Flags = c_ExecutableFlags);
    ~PlayedGame();

    /// Starts the game by "play" with these options. \return how the host ended
    Outcome Play(QStringList const& p_Options = {}, QByteArray const& p_Input = {}) const;
    /// Waits for the script. \return true when it was started so many times
    [[nodiscard]] bool WaitForStarts(int p_Count) const;
    int Starts() const;
    /// What the script has seen at its last start, a line per value.
    QString Arguments() const { return QString::fromUtf8(Read(Program + ".args")); }
    QString Environment() const { return QString::fromUtf8(Read(Program + ".env")); }
    QString Processes() const { return QString::fromUtf8(Read(Program + ".ps")); }
    /// Lets the scripts that run, and those to come, go on running.
    void KeepRunning() const { Put(Program + ".run", "x"); }
    /// Ends the scripts and waits until the process list does not hold them any more.
    void LetGo() const;
    bool IsRunning() const;

    QString const Program =
        QStringLiteral("Game.app/Contents/MacOS/World of Warcraft"); ///< as the module knows it
    QString const Layout = QStringLiteral("Interface/GlueXMl/AccountLogin.xml");
    QString const Script = QStringLiteral("Interface/GlueXMl/AccountLogin.lua");
};

} // namespace Varnholt::TestSupport
