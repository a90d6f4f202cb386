#include "Publisher/Source/PathChecks.hpp"

#include "Files/HostLockName.hpp"
#include "GameModules/ManifestPaths.hpp"
#include "GameModules/PendingList.hpp"
#include "Launcher/Helper/Paths.hpp"
#include "Publisher/Failure.hpp"

#include <QHash>
#include <QRegularExpression>
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

/// The same for names that are one where letter case and the spelling of accents do not count.
QString Folded(QString const& p_Name)
{
    bool const isAscii = std::all_of(p_Name.begin(), p_Name.end(),
                                     [](QChar p_Character) { return p_Character < QChar(0x80); });
    if (isAscii)
        return p_Name.toLower();
    return p_Name.normalized(QString::NormalizationForm_D)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_C);
}

/// Why Windows has no file or folder of that name; empty when it can.
QString WindowsProblem(QString const& p_Name)
{
    static QRegularExpression const c_Reserved(
        QRegularExpression::anchoredPattern(
            QStringLiteral("(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[0-9¹²³]) *(\\..*)?")),
        QRegularExpression::CaseInsensitiveOption);
    static QString const c_Refused = QStringLiteral("<>:\"|?*");
    if (p_Name.endsWith(QLatin1Char('.')) || p_Name.endsWith(QLatin1Char(' ')))
        return QStringLiteral("drops a dot or a blank at the end of a name");
    for (QChar const character : c_Refused) {
        if (p_Name.contains(character))
            return QStringLiteral("has no names with \"%1\"").arg(character);
    }
    if (c_Reserved.match(p_Name).hasMatch())
        return QStringLiteral("keeps the name \"%1\" for a device").arg(p_Name);
    return QString();
}

/// Finds names that are one to a system that ignores letter case.
class CaseWatch {
public:
    explicit CaseWatch(std::size_t p_Files) { Paths.reserve(static_cast<int>(p_Files)); }

    void Add(QString const& p_Path)
    {
        int const slash = p_Path.lastIndexOf(QLatin1Char('/'));
        EnterFolder(p_Path.left(qMax(0, slash)));
        Note(FoldedFolder + Folded(p_Path.mid(slash + 1)), p_Path, false);
    }

private:
    /// Files come folder by folder, so that few are entered anew.
    void EnterFolder(QString const& p_Folder)
    {
        if (p_Folder == Folder)
            return;
        Folder = p_Folder;
        FoldedFolder.clear();
        int start = 0;
        while (start < p_Folder.size()) {
            int const slash = p_Folder.indexOf(QLatin1Char('/'), start);
            int const end = slash < 0 ? p_Folder.size() : slash;
            FoldedFolder += Folded(p_Folder.mid(start, end - start));
            Note(FoldedFolder, p_Folder.left(end), true);
            FoldedFolder += QLatin1Char('/');
            start = end + 1;
        }
    }

    void Note(QString const& p_Folded, QString const& p_Path, bool p_IsFolder)
    {
        auto const known = Paths.constFind(p_Folded);
        if (known == Paths.constEnd()) {
            Paths.insert(p_Folded, p_Path);
        } else if (!p_IsFolder || *known != p_Path) {
            throw Failure(QStringLiteral("%1 and %2 differ only in letter case or in the spelling "
                                         "of accents: clients may hold only one of them")
                              .arg(*known, p_Path));
        }
    }

    QHash<QString, QString> Paths; ///< of files and folders, by folded path
    QString Folder;
    QString FoldedFolder; ///< with "/" behind it
};

} // namespace

void CheckPath(QByteArray const& p_Path)
{
    QString const path = QString::fromUtf8(p_Path);
    bool const isUtf8 = path.toUtf8() == p_Path;
    QString const problem = isUtf8 ? Problem(path) : QStringLiteral("the name is not valid UTF-8");
    if (!problem.isEmpty())
        throw Failure(Shown(path) + QStringLiteral(": ") + problem);
}

void CheckPlatform(QString const& p_Path, ContentPlatform p_Platform)
{
    if (p_Platform != ContentPlatform::Windows)
        return;
    for (QString const& name : p_Path.split(QLatin1Char('/'))) {
        QString const problem = WindowsProblem(name);
        if (!problem.isEmpty())
            throw Failure(QStringLiteral("%1: Windows %2").arg(Shown(p_Path), problem));
    }
}

void CheckCollisions(std::vector<BuildFile> const& p_Files)
{
    CaseWatch watch(p_Files.size());
    for (BuildFile const& file : p_Files)
        watch.Add(file.Source.Path);
}

} // namespace Varnholt::Publisher::PathChecks
