#include "GameModules/PendingList.hpp"

#include <QFile>
#include <QSaveFile>
#include <QTextStream>

namespace Varnholt::Launcher {

QString const PendingList::c_Base = QStringLiteral("ToDownloadBase.db");
QString const PendingList::c_Streamed = QStringLiteral("ToDownload.db");
QString const PendingList::c_Casc = QStringLiteral("ToDownloadCASC.db");

PendingList::Content PendingList::Read(QString const& p_ListPath,
                                       std::function<bool()> const& p_Continue)
{
    Content content;
    QFile file(p_ListPath);
    if (!file.open(QIODevice::ReadOnly))
        return content;
    content.Opened = true;

    QTextStream lines(&file);
    lines.setCodec("UTF-8");
    while (!lines.atEnd() && p_Continue())
        content.Paths += lines.readLine();
    content.Complete = lines.atEnd();
    return content;
}

bool PendingList::Write(QString const& p_ListPath, QStringList const& p_Paths)
{
    QSaveFile file(p_ListPath);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (QString const& path : p_Paths)
        file.write(path.toUtf8() + '\n');
    return file.commit();
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
