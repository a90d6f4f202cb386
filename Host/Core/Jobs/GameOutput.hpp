#pragma once

#include <QString>

namespace Varnholt::Host {

/// The file that takes a game's output. It lies beside the settings file, with the game's
/// identifier in its name, and is its owner's alone; that of the start before is kept with ".1"
/// behind its name.
class GameOutput {
public:
    /// \param p_Folder the game's, in which the file never lies: there is one beside the user's own
    /// settings then
    GameOutput(QString const& p_SettingsFile, QString const& p_AppId, QString const& p_Folder);
    ~GameOutput();
    GameOutput(GameOutput const&) = delete;
    GameOutput& operator=(GameOutput const&) = delete;

    /// Begins a file. Without one the output goes nowhere. \return why; empty when there is one
    QString Begin();
    int Descriptor() const { return Handle; }
    QString const& File() const { return Path; }
    /// The last lines as one, fit to be shown; empty when there are none.
    QString LastLines() const;
    /// Removes both files.
    void Forget() const;

private:
    QString Path;
    int Handle = -1;
};

} // namespace Varnholt::Host
