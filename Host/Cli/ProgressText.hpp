#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"

#include <QString>

/// A snapshot in words. No output of its own.
namespace Varnholt::Host::ProgressText {

/// Seconds as "0:05", "12:34" or "1:02:03".
QString Duration(qint64 p_Seconds);

/// "43 %"; empty when there is no measure.
QString Percent(RunSnapshot const& p_Snapshot);

/// The whole story in one line, for a log: "downloading base files: file 12 of 312 (a/b.MPQ),
/// 1.2 GiB of 2.6 GiB, 12 MiB/s, 1:23 left".
QString Line(RunSnapshot const& p_Snapshot);

/// A line of a terminal with a bar, not longer than p_Width columns. What matters less is left out
/// when there is not enough room, a number only whole; a file's name loses its beginning.
QString Bar(RunSnapshot const& p_Snapshot, int p_Width, bool p_Unicode);

} // namespace Varnholt::Host::ProgressText
