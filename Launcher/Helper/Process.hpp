#pragma once

#include <QString>
#include <QStringList>

namespace Varnholt::Launcher::Helper::Process {

/// Looks for a running program of a folder in the system's process list.
///
/// Starts `ps` and blocks for up to two seconds, also when it cannot be killed: it then ends behind
/// the caller's back, which takes the event loop of the main thread. Any thread.
///
/// A process matches when its command line (with its environment) holds both the folder and one of
/// the names; letter case, quotes and the direction of slashes do not matter.
/// \param p_Folder an empty folder matches nothing
/// \param p_Names parts of command lines, with "/" between folders
/// \param p_MatchedLine when not null, receives the matching line in its normalised form; left
///        alone when there is none
bool IsProcessRunningIn(QString p_Folder, QStringList p_Names, QString* p_MatchedLine);

/// The same on a given process list, one command line per line.
bool IsProcessListed(QString const& p_ProcessList, QString const& p_Folder,
                     QStringList const& p_Names, QString* p_MatchedLine);

/// All of a matching line that may be logged, since a process's environment holds secrets: the name
/// that it has matched, a blank and the process's number, when it tells one. Null without a match.
QString NameAndId(QString const& p_MatchedLine, QStringList const& p_Names);

} // namespace Varnholt::Launcher::Helper::Process
