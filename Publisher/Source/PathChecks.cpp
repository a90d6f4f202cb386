#include "Publisher/Source/PathChecks.hpp"

#include "Files/HostLockName.hpp"
#include "GameModules/ManifestPaths.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Helper/Paths.hpp"
#include "Publisher/Failure.hpp"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace Varnholt::Publisher::PathChecks {

namespace {

/// A path that can be shown: control characters would rearrange a terminal.
QString Shown(QString p_Path)
{
    for (QChar& character : p_Path) {
        if (character.category() == QChar::Other_Control)
            character = QLatin1Char('?');
    }
    return p_Path;
}

bool HasControlCharacter(QString const& p_Path)
{
    return std::any_of(p_Path.begin(), p_Path.end(), [](QChar p_Character) {
        return p_Character.category() == QChar::Other_Control;
    });
}

bool IsPendingList(QString const& p_Path)
{
    namespace PendingList = Launcher::PendingList;
    auto const isNamed = [&p_Path](QString const& p_Name) {
        return p_Path.compare(p_Name, Qt::CaseInsensitive) == 0;
    };
    return isNamed(PendingList::c_Base) || isNamed(PendingList::c_Streamed) ||
           isNamed(PendingList::c_Casc) || isNamed(PendingList::c_FirstBuild);
}

QString Problem(QString const& p_Path)
{
    if (HasControlCharacter(p_Path))
        return QStringLiteral("the name holds a control character");
    if (!Launcher::ManifestPaths::IsInsideFolder(p_Path))
        return QStringLiteral("clients drop the path, since it may lead out of the game folder");
    if (IsPendingList(p_Path))
        return QStringLiteral("clients keep a list of their own under this name");
    if (p_Path.compare(QLatin1String(c_HostLockName), Qt::CaseInsensitive) == 0)
        return QStringLiteral("clients lock the game folder by a file of this name");
    if (p_Path.endsWith(QLatin1String(".part"), Qt::CaseInsensitive))
        return QStringLiteral("clients use names that end in \".part\" for unfinished files");
    if (Launcher::ManifestPaths::IsTooLong(Launcher::Helper::Paths::PartFile(p_Path)))
        return QStringLiteral("the name is too long for a client that appends \".part\" to it");
    return QString();
}

QString Folded(QString const& p_Path)
{
    return p_Path.normalized(QString::NormalizationForm_D)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_C);
}

} // namespace

void CheckPath(QByteArray const& p_Path)
{
    QString const path = QString::fromUtf8(p_Path);
    bool const isUtf8 = path.toUtf8() == p_Path;
    QString const problem = isUtf8 ? Problem(path) : QStringLiteral("the name is not valid UTF-8");
    if (!problem.isEmpty())
        throw Failure(Shown(path) + QStringLiteral(": ") + problem);
}

void CheckCollisions(std::vector<BuildFile> const& p_Files)
{
    QHash<QString, QString> files;
    for (BuildFile const& file : p_Files) {
        QString const other = files.value(Folded(file.Source.Path));
        if (!other.isNull()) {
            throw Failure(QStringLiteral("%1 and %2 differ only in letter case or in the spelling "
                                         "of accents: clients may hold only one of them")
                              .arg(other, file.Source.Path));
        }
        files.insert(Folded(file.Source.Path), file.Source.Path);
    }
    for (BuildFile const& file : p_Files) {
        for (int slash = file.Source.Path.indexOf(QLatin1Char('/')); slash >= 0;
             slash = file.Source.Path.indexOf(QLatin1Char('/'), slash + 1)) {
            QString const folder = file.Source.Path.left(slash);
            QString const other = files.value(Folded(folder));
            if (!other.isNull()) {
                throw Failure(QStringLiteral("the file %1 and the folder %2 differ only in letter "
                                             "case: clients may hold only one of them")
                                  .arg(other, folder));
            }
        }
    }
}

} // namespace Varnholt::Publisher::PathChecks
