#include "Tests/Support/GameFolder.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QDirIterator>

namespace Varnholt::TestSupport {

GameFolder::GameFolder(QString const& p_Name)
    : Base(QDir(Temporary.path()).canonicalPath() + QLatin1Char('/'))
    , Folder(Base + p_Name)
{
}

bool GameFolder::Has(QString const& p_File) const
{
    return QFile::exists(Path(p_File));
}

QByteArray GameFolder::Read(QString const& p_File) const
{
    return ReadFile(Path(p_File));
}

void GameFolder::Put(QString const& p_File, QByteArray const& p_Bytes) const
{
    if (!WriteFile(Path(p_File), p_Bytes))
        qFatal("cannot write %s", qPrintable(Path(p_File)));
}

QStringList GameFolder::FilesOnDisk() const
{
    QStringList names;
    QDirIterator files(Folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        names += files.next().mid(Folder.size());
    names.sort();
    return names;
}

} // namespace Varnholt::TestSupport
