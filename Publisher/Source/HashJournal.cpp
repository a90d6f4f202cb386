#include "Publisher/Source/HashJournal.hpp"

#include "Publisher/Source/HashLine.hpp"

#include <QFileInfo>
#include <QHash>
#include <QUrl>

namespace Varnholt::Publisher {

HashJournal::HashJournal(QString const& p_File, QString const& p_Source)
    : Head(QUrl::toPercentEncoding(QFileInfo(p_Source).canonicalFilePath()) + '\n')
    , File(p_File)
{
}

void HashJournal::FillIn(std::vector<BuildFile>& p_Files) const
{
    QFile file(File.fileName());
    if (!file.open(QIODevice::ReadOnly) || file.readLine(HashLine::c_MostBytes) != Head)
        return;
    QHash<QByteArray, HashLine> lines;
    while (!file.atEnd()) {
        QByteArray const text = file.readLine(HashLine::c_MostBytes);
        auto const line = HashLine::Parse(text.left(text.size() - 1));
        // The last one may have been cut.
        if (line && text.endsWith('\n'))
            lines.insert(line->Path, *line);
    }
    for (BuildFile& known : p_Files) {
        auto const line = lines.constFind(known.Source.Path.toUtf8());
        if (known.Md5.isEmpty() && line != lines.constEnd() && line->IsOf(known.Source))
            known.Md5 = QString::fromLatin1(line->Md5);
    }
}

void HashJournal::Add(BuildFile const& p_File)
{
    std::lock_guard const lock(Mutex);
    if (!File.isOpen()) {
        QFile before(File.fileName());
        bool const isOurs = before.open(QIODevice::ReadOnly) && before.readLine() == Head;
        auto const mode = isOurs ? QIODevice::Append : QIODevice::WriteOnly;
        if (!File.open(mode | QIODevice::Unbuffered))
            return;
        // After a line that was cut, a new one.
        File.write(isOurs ? QByteArray("\n") : Head);
    }
    File.write(HashLine::Of(p_File).Text());
}

} // namespace Varnholt::Publisher
