#include "GameModules/TextFilePatch.hpp"

#include "GameModules/FileReplacement.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace Varnholt::Launcher::TextFilePatch {

std::optional<QByteArray> Read(QString const& p_FilePath)
{
    QFile file(p_FilePath);
    if (!file.exists())
        return std::nullopt;
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray Patched(std::optional<QByteArray> const& p_Content, QString const& p_Key,
                   QString const& p_Line)
{
    // No line end here, unlike below: the game has always been given its first line so.
    if (!p_Content)
        return p_Line.toUtf8();
    QByteArray patched;
    QTextStream lines(*p_Content);
    while (!lines.atEnd()) {
        QString const line = lines.readLine();
        if (!line.contains(p_Key, Qt::CaseInsensitive))
            patched += line.toLocal8Bit() + '\n';
    }
    return patched + p_Line.toLocal8Bit() + '\n';
}

void Write(QString const& p_FilePath, QByteArray const& p_Content)
{
    QDir().mkpath(QFileInfo(p_FilePath).absolutePath());
    FileReplacement::Replace(p_FilePath, p_Content);
}

void Apply(QString const& p_FilePath, QString const& p_Key, QString const& p_Line,
           bool p_CreateIfMissing)
{
    auto const content = Read(p_FilePath);
    if (content || p_CreateIfMissing)
        Write(p_FilePath, Patched(content, p_Key, p_Line));
}

} // namespace Varnholt::Launcher::TextFilePatch
