#include "Publisher/Cli/ConsoleText.hpp"

#include "Programs/Printable.hpp"
#include "Programs/StandardStreams.hpp"

#include <QJsonDocument>
#include <QLocale>

namespace Varnholt::Publisher::ConsoleText {

namespace {

void Print(FILE* p_Stream, QString const& p_Line)
{
    Programs::StandardStreams::Write(p_Stream, Programs::Printable(p_Line) + QLatin1Char('\n'));
}

} // namespace

void PrintLine(QString const& p_Line)
{
    Print(stdout, p_Line);
}

void PrintErrorLine(QString const& p_Line)
{
    Print(stderr, p_Line);
}

void PrintJson(QJsonObject const& p_Object)
{
    PrintLine(QString::fromUtf8(QJsonDocument(p_Object).toJson(QJsonDocument::Compact)));
}

QString Bytes(qint64 p_Bytes)
{
    return QLocale::c().formattedDataSize(p_Bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace Varnholt::Publisher::ConsoleText
