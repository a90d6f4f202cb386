#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Launcher {

/// The text of a fetched file: its bytes as UTF-8 up to the first NUL byte, invalid sequences as
/// U+FFFD. Every small remote file is read through this, so that all of them end at a NUL byte.
QString RemoteText(QByteArray const& p_Data);

} // namespace Varnholt::Launcher
