#pragma once

#include "GameModules/LinkGuard.hpp"

#include <QMutex>
#include <QSet>
#include <QString>

namespace Varnholt::Launcher {

/// Answers for a run which files links keep out of reach, and warns of each once. Any thread; a
/// slow disk keeps nobody waiting but those who ask.
class LinkWatch {
public:
    /// \param p_Name the application's, for the warnings
    explicit LinkWatch(QString const& p_Name);

    // Folders end in "/" or are empty; paths are relative to them.

    /// Begins anew to look and to warn, as does a question about another folder than the last.
    void Begin(QString const& p_Folder);
    /// Looks anew, since what was found may be hours old, and goes on to warn once.
    void LookAgain();
    /// Whether a link that is not followed is on the way to a file of the build: then nothing may
    /// be done to what the path names.
    bool IsBarred(QString const& p_Folder, QString const& p_Path);
    /// The same for a file that the module makes itself, in whose place no link may lead out
    /// either.
    bool LeadsOut(QString const& p_Folder, QString const& p_Path);
    /// Takes a link that leads out from the place of such a file. \return false when the file would
    /// still be written outside
    bool MakeRoom(QString const& p_Folder, QString const& p_Path);

private:
    void Settle(QString const& p_Folder);
    using Question = std::optional<LinkGuard::Link> (LinkGuard::*)(QString const&);

    bool Ask(Question p_Question, QString const& p_Folder, QString const& p_Path);

    QString const Name;
    QMutex Mutex;
    LinkGuard Guard;
    QSet<QString> Warned;
};

} // namespace Varnholt::Launcher
