#pragma once

#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// A game's executable: a script that writes down how it was started.
class GameScript {
public:
    enum class Run {
        Once,     ///< ends at once
        UntilQuit ///< until it is told to, or its file is removed
    };

    explicit GameScript(QString const& p_Path)
        : Path(p_Path)
    {
    }

    /// What the file holds.
    static QByteArray Text(Run p_Run = Run::Once);
    /// Writes the file with these permissions.
    void Write(unsigned p_Mode = 0755, Run p_Run = Run::Once) const;

    /// One text for every start, "[first argument][second argument]".
    QStringList Starts() const;
    /// The environment of the last start.
    QByteArray Environment() const;
    /// Makes every instance that runs quit.
    void Quit() const;

    QString const Path;
};

} // namespace Varnholt::TestSupport
