#include "Publisher/Cli/ConsoleText.hpp"

#include <QJsonDocument>
#include <QLocale>

#include <cstdio>

namespace Varnholt::Publisher::ConsoleText {

namespace {

void Print(FILE* p_Stream, QString const& p_Line)
{
    QByteArray const line = p_Line.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), p_Stream);
    std::fflush(p_Stream);
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
