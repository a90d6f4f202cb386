#pragma once

#include "Tests/Host/SessionGame.hpp"
#include "Tests/Hostile/OutsideTree.hpp"

#include <QByteArray>
#include <QString>

#include <vector>

namespace Varnholt::TestSupport {

/// A game whose server means harm, the tree beside its folder, and a file that appears when a shell
/// takes a name for a command.
class HostileGame : public SessionGame {
public:
    static constexpr qint32 c_ReadOnly = 0x01;
    static constexpr qint32 c_Executable = 0x02;
    static constexpr qint32 c_GameExecutable = 0x04 | 0x08; ///< of either platform

    /// The harmless part of the build: files, a program that ends at once, templates of the login.
    HostileGame();

    /// Adds an entry to the manifest; the server has its bytes under a name of its own.
    HostileGame& AddEntry(QString const& p_Path, qint32 p_Flags = 0, bool p_Streamed = false);
    /// Puts the build on the server and watches the tree from now on.
    void Begin();
    /// Puts a manifest with the harmless files and all entries on the server.
    void PublishAll();

    /// Puts a symbolic link into the folder, in the place of whatever stands there.
    void Link(QString const& p_Path, QString const& p_Target) const;
    /// What was done to the tree since this was asked last, or since the beginning.
    QStringList Disturbances();
    static QByteArray BytesOf(QString const& p_Path) { return "bytes of " + p_Path.toUtf8(); }
    /// Names of the added entries whose files are missing or differ.
    QStringList WrongEntries() const;
    /// Ends the game's files in other bytes.
    void Damage(QString const& p_Path) const { Put(p_Path, "damaged"); }
    QString Play();
    QString Uninstall();
    /// True when a name was run as a command.
    bool WasFooled() const;

    static QString Program() { return QStringLiteral("Game.app/Contents/MacOS/Game"); }

    OutsideTree Outside;

private:
    struct Entry {
        QString Path;
        qint32 Flags;
        bool IsStreamed;
    };

    std::vector<Entry> Entries;
};

} // namespace Varnholt::TestSupport
