#include "Host/Window/Dialogs/FolderAdvice.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <QDir>

#include <algorithm>

namespace Varnholt::Host {

namespace {

/// A name that every file system takes as one of a folder.
QString FolderName(QString p_Game)
{
    for (QChar& character : p_Game)
        if (QStringLiteral("/\\:*?\"<>|").contains(character) || character < QLatin1Char(' '))
            character = QLatin1Char('-');
    return p_Game.trimmed();
}

} // namespace

FolderAdvice::FolderAdvice(std::vector<Failure> const& p_Warnings)
{
    for (Failure const& warning : p_Warnings) {
        Found.push_back(PointOf(warning));
        Shared = Shared || warning.Kind == FailureKind::FolderForbidden ||
                 warning.Kind == FailureKind::FolderForeign;
    }
}

bool FolderAdvice::IsPossible() const
{
    return std::none_of(Found.begin(), Found.end(),
                        [](Point const& p_Point) { return p_Point.Forbids; });
}

FolderAdvice::Point FolderAdvice::PointOf(Failure const& p_Warning)
{
    QString const& detail = p_Warning.Detail;
    switch (p_Warning.Kind) {
    case FailureKind::FolderIsFile:
        return {tr("This is a file. Choose a folder."), true};
    case FailureKind::FolderForbidden:
        return {tr("A game needs a folder of its own: %1.").arg(detail), true};
    case FailureKind::FolderUnwritable:
        return {tr("You cannot write here: %1.").arg(detail), true};
    case FailureKind::FolderForeign:
        return {tr("The folder is not empty. The game would lie among the files that are there."),
                false};
    case FailureKind::InstalledElsewhere:
        return {tr("The game is already installed in %1. Its files stay there, but only those "
                   "here will be kept up to date.")
                    .arg(QDir::toNativeSeparators(p_Warning.Subject)),
                false};
    case FailureKind::DiskFull:
        return {tr("There is too little room: %1.").arg(detail), true};
    default:
        return {RunText::Sentence(p_Warning), true};
    }
}

QString FolderAdvice::Proposal(QString const& p_Home, QString const& p_Game)
{
    return Inside(QDir(p_Home).filePath(QStringLiteral("Games")), p_Game);
}

QString FolderAdvice::Inside(QString const& p_Folder, QString const& p_Game)
{
    return QDir::cleanPath(QDir(p_Folder).filePath(FolderName(p_Game)));
}

} // namespace Varnholt::Host
