#include "GameModules/PendingList.hpp"

#include "GameModules/FileReplacement.hpp"

#include <QFile>
#include <QFileInfo>

namespace Varnholt::Launcher {

QString const PendingList::c_Base = QStringLiteral("ToDownloadBase.db");
QString const PendingList::c_Streamed = QStringLiteral("ToDownload.db");
QString const PendingList::c_Casc = QStringLiteral("ToDownloadCASC.db");
QString const PendingList::c_FirstBuild = QStringLiteral("FirstBuild.db");

PendingList::Content PendingList::Read(QString const& p_ListPath,
                                       std::function<bool()> const& p_Continue)
{
    Content content;
    QFile file(p_ListPath);
    if (QFileInfo(p_ListPath).isSymLink() || !file.open(QIODevice::ReadOnly))
        return content;
    content.Opened = true;

    // Not by a text stream, which takes a carriage return or a byte order mark away from a name.
    // Nor is the latter in front here.
    QByteArray const bytes = '\n' + file.readAll();
    QString const lines = QString::fromUtf8(bytes.constData(), bytes.size());
    int from = 1;
    while (from < lines.size() && p_Continue()) {
        int const end = lines.indexOf(QLatin1Char('\n'), from);
        content.Paths += lines.mid(from, end < 0 ? -1 : end - from);
        from = end < 0 ? lines.size() : end + 1;
    }
    content.Complete = from >= lines.size();
    return content;
}

bool PendingList::Write(QString const& p_ListPath, QStringList const& p_Paths)
{
    if (QFileInfo(p_ListPath).isSymLink() && !QFile::remove(p_ListPath))
        return false;
    QByteArray content;
    for (QString const& path : p_Paths)
        content += path.toUtf8() + '\n';
    return ReplaceFile(p_ListPath, content);
}

void PendingList::Update(QString const& p_ListPath, QString const& p_Struck, QString const& p_Added,
                         std::function<bool()> const& p_Continue)
{
    Content content = Read(p_ListPath, p_Continue);
    if (content.Opened && !content.Complete)
        return;
    content.Paths.removeAll(p_Struck);
    if (!p_Added.isEmpty())
        content.Paths += p_Added;
    Write(p_ListPath, content.Paths);
}

} // namespace Varnholt::Launcher
