#pragma once

#include <QJsonObject>
#include <QString>

namespace Varnholt::Publisher::ConsoleText {

/// Writes one line as UTF-8, printable, in one piece, and flushes it. Any thread.
void PrintLine(QString const& p_Line);
void PrintErrorLine(QString const& p_Line);

/// Writes an object as one line of standard output.
void PrintJson(QJsonObject const& p_Object);

/// "1.5 MB"; powers of 1000.
QString Bytes(qint64 p_Bytes);

} // namespace Varnholt::Publisher::ConsoleText
