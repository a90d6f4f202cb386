#include "GameModules/TextFilePatch.hpp"

#include "GameModules/FileReplacement.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace Varnholt::Launcher {

namespace {

QStringList LinesWithout(QString const& p_FilePath, QString const& p_Key)
{
    QStringList kept;
    QFile file(p_FilePath);
    if (!file.open(QIODevice::ReadOnly))
        return kept;
    QTextStream lines(&file);
    while (!lines.atEnd()) {
        QString const line = lines.readLine();
        if (!line.contains(p_Key, Qt::CaseInsensitive))
            kept += line;
    }
    return kept;
}

} // namespace

void TextFilePatch::Apply(QString const& p_FilePath, QString const& p_Key, QString const& p_Line,
                          bool p_CreateIfMissing)
{
    if (!QFile::exists(p_FilePath)) {
        if (!p_CreateIfMissing)
            return;
        QDir().mkpath(QFileInfo(p_FilePath).absolutePath());
        // No line end here, unlike below: the game has always been given its first line so.
        ReplaceFile(p_FilePath, p_Line.toUtf8());
        return;
    }
    QStringList const lines = LinesWithout(p_FilePath, p_Key) << p_Line;
    QByteArray content;
    for (QString const& line : lines)
        content += line.toLocal8Bit() + '\n';
    ReplaceFile(p_FilePath, content);
}

} // namespace Varnholt::Launcher
