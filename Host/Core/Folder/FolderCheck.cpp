#include "Host/Core/Folder/FolderCheck.hpp"

#include "GameModules/PendingList.hpp"
#include "Host/Core/Folder/FolderLock.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <algorithm>

namespace Varnholt::Host::FolderCheck {

namespace {

bool IsSame(QString const& p_Path, QString const& p_Other)
{
    QString const path = QFileInfo(p_Path).canonicalFilePath();
    return !path.isEmpty() && path == QFileInfo(p_Other).canonicalFilePath();
}

bool HoldsForeignFiles(QString const& p_Folder)
{
    if (HasPendingLists(p_Folder))
        return false;
    QDir const folder(p_Folder);
    // An installation that ended before it was recorded has left its lock file there.
    QStringList const names =
        folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    return std::any_of(names.begin(), names.end(),
                       [](QString const& p_Name) { return p_Name != FolderLock::c_File; });
}

} // namespace

QString Normalized(QString const& p_Folder)
{
    QString folder = QDir::cleanPath(QDir::current().absoluteFilePath(p_Folder));
    while (folder == QLatin1String("/..") || folder.startsWith(QLatin1String("/../")))
        folder.remove(0, 3); // above the root is the root
    return Launcher::Helper::Paths::WithSlash(folder);
}

QString NearestExisting(QString p_Folder)
{
    while (!QFileInfo::exists(p_Folder) && !QDir(p_Folder).isRoot())
        p_Folder = QFileInfo(QDir::cleanPath(p_Folder)).path();
    return p_Folder;
}

bool HasPendingLists(QString const& p_Folder)
{
    QDir const folder(p_Folder);
    return folder.exists(Launcher::PendingList::c_Base) ||
           folder.exists(Launcher::PendingList::c_Streamed) ||
           folder.exists(Launcher::PendingList::c_FirstBuild);
}

std::vector<Failure> Objections(QString const& p_Folder, QString const& p_Known)
{
    QString const folder = QDir::cleanPath(p_Folder);
    QString const nearest = NearestExisting(folder);
    if (!QFileInfo(nearest).isDir())
        return {{FailureKind::FolderIsFile, nearest, {}}};
    std::vector<Failure> found;
    if (IsSame(folder, QDir::rootPath()))
        found.push_back(
            {FailureKind::FolderForbidden, folder,
             QCoreApplication::translate("Varnholt::Host::FolderCheck", "it is the root")});
    if (IsSame(folder, QDir::homePath()))
        found.push_back(
            {FailureKind::FolderForbidden, folder,
             QCoreApplication::translate("Varnholt::Host::FolderCheck", "it is your home folder")});
    bool const known = !p_Known.isEmpty() && IsSame(folder, p_Known);
    if (nearest == folder && !known && HoldsForeignFiles(folder))
        found.push_back({FailureKind::FolderForeign, folder, {}});
    if (auto const failure = ForWriting(nearest))
        found.push_back(*failure);
    return found;
}

std::optional<Failure> ForInstall(QString const& p_Folder, QString const& p_Known, bool p_Confirmed)
{
    for (Failure const& failure : Objections(p_Folder, p_Known))
        if (failure.Kind != FailureKind::FolderForeign || !p_Confirmed)
            return failure;
    return std::nullopt;
}

std::optional<Failure> ForWriting(QString const& p_Folder)
{
    // The permission bits tell little: mounts, quotas and access lists decide too.
    QTemporaryFile probe(QDir(p_Folder).filePath(QStringLiteral(".varnholt-XXXXXX")));
    if (probe.open())
        return std::nullopt;
    return Failure{FailureKind::FolderUnwritable, QDir::cleanPath(p_Folder), probe.errorString()};
}

} // namespace Varnholt::Host::FolderCheck
