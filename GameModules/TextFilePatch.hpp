#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Edits whole lines of a game text file.
namespace Varnholt::Launcher::TextFilePatch {

/// What stands in a file, null when there is none. One that cannot be read counts as empty.
std::optional<QByteArray> Read(QString const& p_FilePath);

/// Drops every line that contains the key (anywhere, in any letter case) and appends the line.
///
/// The other lines keep their order; line ends become "\n". Without a file it is the line alone,
/// without a line end. An existing file is read and written in the local 8-bit encoding, a new one
/// is UTF-8.
QByteArray Patched(std::optional<QByteArray> const& p_Content, QString const& p_Key,
                   QString const& p_Line);

/// Replaces the file as a whole, and makes its folders; one that cannot be written stays as it was,
/// and one that holds the content already is not touched. Reports nothing.
void Write(QString const& p_FilePath, QByteArray const& p_Content);

/// Patches a file; a missing one is created or left missing.
void Apply(QString const& p_FilePath, QString const& p_Key, QString const& p_Line,
           bool p_CreateIfMissing);

} // namespace Varnholt::Launcher::TextFilePatch
