#pragma once

#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace Varnholt::Host {

/// What one program tells another, or wants to know of it.
struct ControlMessage {
    enum class Type { Pause, Resume, Look, Follow, LimitRate };

    Type Kind = Type::Pause;
    quint64 BytesPerSecond = 0; ///< of `LimitRate`; 0: as fast as it comes
};

/// The lines that two programs exchange about a run in a game folder, each with its "\n", and where
/// they do so.
namespace ControlLine {

/// A message with its end is never longer.
constexpr int c_LongestMessage = 32;

/// The socket of the program that works in a folder, however the folder is written; the same for
/// all of a user's programs, whatever their environment.
QString SocketOf(QString const& p_Folder);

QByteArray Of(ControlMessage const& p_Message);
/// \return none when the line is no message
std::optional<ControlMessage> MessageIn(QByteArray const& p_Line);

/// What is known of a run, but for `IsHeld` and `Space`.
QJsonObject ObjectOf(RunSnapshot const& p_Snapshot);
RunSnapshot SnapshotIn(QJsonObject const& p_Object);

/// The line of an object: one with "end" tells how a run has ended, another how it stands.
QByteArray Of(QJsonObject const& p_Object);
QJsonObject EndOf(RunResult const& p_Result);
/// Without what is only in lists.
RunResult ResultIn(QJsonObject const& p_Object);

} // namespace ControlLine

} // namespace Varnholt::Host
