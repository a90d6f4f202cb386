#include "Tests/Host/FolderListing.hpp"

#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"

#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

namespace Varnholt::TestSupport {

QStringList FolderListing(QString const& p_Folder)
{
    QStringList lines;
    QDirIterator entries(p_Folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        QString const path = entries.next();
        QFileInfo const entry(path);
        lines += QStringLiteral("%1 %2 %3 %4 %5 %6")
                     .arg(path.mid(p_Folder.size()), entry.isDir() ? "folder" : "file")
                     .arg(entry.isDir() ? 0 : entry.size())
                     .arg(ModeOf(path), 0, 8)
                     .arg(entry.lastModified().toMSecsSinceEpoch())
                     .arg(entry.isDir() ? QString() : SampleContent::Md5(ReadFile(path)));
    }
    lines.sort();
    return lines;
}

} // namespace Varnholt::TestSupport
