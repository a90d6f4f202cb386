#include "GameModules/ManifestPaths.hpp"

#include "Launcher/Application/LogCategories.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Launcher::ManifestPaths {

bool IsInsideFolder(QString const& p_Path)
{
    // Half a character at a path's end is not in the file's name: ".." would be left of it.
    if (p_Path.contains(QChar(QChar::Null)) || !p_Path.isValidUtf16())
        return false;
    QString path = p_Path;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    bool const hasDrive = path.size() >= 2 && path[0].isLetter() && path[1] == QLatin1Char(':');
    if (path.startsWith(QLatin1Char('/')) || hasDrive)
        return false;
    QString const clean = QDir::cleanPath(path);
    return !clean.isEmpty() && clean != QLatin1String(".") && clean != QLatin1String("..") &&
           !clean.startsWith(QLatin1String("../"));
}

bool IsTooLong(QString const& p_Path)
{
    constexpr int c_PathBytes = 1023;
    constexpr int c_NameBytes = 255;

    QByteArray const path = p_Path.toUtf8();
    if (path.size() > c_PathBytes)
        return true;
    QList<QByteArray> const names = path.split('/');
    return std::any_of(names.begin(), names.end(),
                       [](QByteArray const& p_Name) { return p_Name.size() > c_NameBytes; });
}

void DropUnsafeEntries(ApplicationManifest& p_Manifest)
{
    auto const unsafe = [](ApplicationManifestFileEntry const& p_Entry) {
        bool const leaves = !IsInsideFolder(p_Entry.Path);
        if (!leaves && !IsTooLong(p_Entry.Path))
            return false;
        qCWarning(LogStartup).nospace()
            << "Manifest entry dropped, its path "
            << (leaves ? "leaves the game folder" : "is too long") << ": " << p_Entry.Path;
        return true;
    };
    for (auto* entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        entries->erase(std::remove_if(entries->begin(), entries->end(), unsafe), entries->end());
}

} // namespace Varnholt::Launcher::ManifestPaths
