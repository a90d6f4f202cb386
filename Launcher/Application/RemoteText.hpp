#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace Varnholt::Launcher::RemoteText {

/// The text of a fetched file: its bytes as UTF-8 up to the first NUL byte, invalid sequences as
/// U+FFFD. Every small remote file is read through this, so that all of them end at a NUL byte.
QString Of(QByteArray const& p_Data);

/// The same as bytes again, in which invalid sequences do not fail a reader of JSON.
QByteArray Utf8Of(QByteArray const& p_Data);

/// The JSON object that the text is. None when it is anything else.
std::optional<QJsonObject> ObjectOf(QByteArray const& p_Data);

} // namespace Varnholt::Launcher::RemoteText
