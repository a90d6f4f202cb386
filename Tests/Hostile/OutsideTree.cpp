#include "Tests/Hostile/OutsideTree.hpp"

#include "Tests/Host/FolderListing.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QDateTime>
#include <QSet>

namespace Varnholt::TestSupport {

namespace {

void Put(QString const& p_Path)
{
    QDateTime const longAgo = QDateTime::fromSecsSinceEpoch(1000000000);
    if (!WriteFile(p_Path, "the user's own: " + p_Path.toUtf8()) || !SetMode(p_Path, 0640))
        qFatal("cannot write %s", qPrintable(p_Path));
    QFile file(p_Path);
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(longAgo, QFileDevice::FileModificationTime))
        qFatal("cannot date %s", qPrintable(p_Path));
}

} // namespace

OutsideTree::OutsideTree(QString const& p_Folder)
    : Folder(p_Folder)
{
    for (char const* const name :
         {"file", "base.MPQ", "deep/below/file", "Config.wtf", "ToDownload.db", "ToDownloadBase.db",
          "AccountLogin.xml", "AccountLogin.lua", "AccountLogin.xml.origin",
          "AccountLogin.lua.origin", "program", "locale.MPQ"})
        Put(Path(QLatin1String(name)));
    if (!QDir().mkpath(Path(QStringLiteral("empty"))))
        qFatal("cannot make folders");
}

QString OutsideTree::Path(QString const& p_Name) const
{
    return p_Name.isEmpty() ? Folder : Folder + QLatin1Char('/') + p_Name;
}

void OutsideTree::Watch()
{
    Before = Listing();
    Accesses = std::make_unique<AccessWatch>(Folder);
}

QStringList OutsideTree::Disturbances()
{
    // In this order: looking is an access.
    QStringList disturbances = Accesses->Take();
    disturbances.removeDuplicates();
    QStringList const now = Listing();
    for (QString const& line : Before)
        if (!now.contains(line))
            disturbances += "not so any more: " + line;
    for (QString const& line : now)
        if (!Before.contains(line))
            disturbances += "so now: " + line;
    return disturbances;
}

QStringList OutsideTree::Listing() const
{
    QFileInfo const folder(Folder);
    return FolderListing(Folder) << QStringLiteral("itself %1 %2")
                                        .arg(ModeOf(Folder), 0, 8)
                                        .arg(folder.lastModified().toMSecsSinceEpoch());
}

} // namespace Varnholt::TestSupport
