#include "Host/Core/Network/OfflineCopies.hpp"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

namespace Varnholt::Host {

namespace {

QByteArray ContentOf(QString const& p_File)
{
    QFile file(p_File);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

OfflineCopies::OfflineCopies(QString const& p_SettingsFile)
{
    QFileInfo const file(p_SettingsFile);
    Where = QStringLiteral("%1/%2.offline/").arg(file.absolutePath(), file.completeBaseName());
}

bool OfflineCopies::Keep(Documents const& p_Documents, std::string const& p_VersionPath) const
{
    auto const version = p_Documents.find(p_VersionPath);
    if (version == p_Documents.end() || !QDir().mkpath(Where))
        return false;
    // The manifest of each build has its own path. The version file decides which of them counts,
    // so that it is the last to be written and the others go afterwards.
    QStringList kept;
    for (auto const& document : p_Documents) {
        if (document.first != p_VersionPath && !Write(document.first, document.second))
            return false;
        kept += QFileInfo(FileOf(document.first)).fileName();
    }
    if (!Write(version->first, version->second))
        return false;
    for (QString const& name : QDir(Where).entryList(QDir::Files | QDir::Hidden))
        if (!kept.contains(name))
            QFile::remove(Where + name);
    return true;
}

OfflineCopies::Documents OfflineCopies::Read() const
{
    Documents documents;
    for (QString const& name : QDir(Where).entryList(QDir::Files))
        documents[QUrl::fromPercentEncoding(name.toUtf8()).toStdString()] =
            ContentOf(Where + name).toStdString();
    return documents;
}

void OfflineCopies::Forget() const
{
    for (QString const& name : QDir(Where).entryList(QDir::Files | QDir::Hidden))
        QFile::remove(Where + name);
    QDir().rmdir(Where);
}

bool OfflineCopies::Write(std::string const& p_Path, std::string const& p_Content) const
{
    QByteArray const content = QByteArray::fromStdString(p_Content);
    QString const name = FileOf(p_Path);
    if (QFileInfo::exists(name) && ContentOf(name) == content)
        return true; // a start of the same build costs the disk nothing
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
           file.commit();
}

QString OfflineCopies::FileOf(std::string const& p_Path) const
{
    return Where + QString::fromLatin1(QUrl::toPercentEncoding(QString::fromStdString(p_Path)));
}

} // namespace Varnholt::Host
