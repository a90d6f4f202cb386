#include "Tests/Faults/Belongings.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ImmutableFile.hpp"
#include "Tests/Support/OrdinaryUser.hpp"

#include <QDir>

#include <memory>

namespace Varnholt::TestSupport {

namespace {

QByteArray const c_OfThePlayer = "of the player";

QStringList Files()
{
    return {FaultGame::c_First, FaultGame::c_Middle, FaultGame::c_Last};
}

/// Everything that a run writes: files of the build, their partial files, lists, configuration.
QStringList Written()
{
    QStringList names = Files();
    for (QString const& file : Files())
        names += file + QLatin1String(".part");
    return names + Belongings::c_Lists + QStringList(Belongings::c_Config);
}

void Remove(FaultGame const& p_Game, QString const& p_Name)
{
    QString const path = p_Game.Path(p_Name);
    if (!QFile::remove(path))
        QDir(path).removeRecursively();
}

/// An installed game that will write all there is.
std::unique_ptr<FaultGame> OldGame()
{
    auto game = std::make_unique<FaultGame>();
    game->Publish();
    FaultTrial::PutOld(*game);
    for (QString const& file : Files())
        Remove(*game, file);
    return game;
}

void TryReadOnly(QString const& p_Name, int p_Mode, int p_ModeAfter, FaultTally& p_Tally)
{
    auto const game = OldGame();
    for (QString const& file : Files())
        game->Put(file + ".part", game->Read(file));
    QString const path = game->Path(p_Name);
    if (!SetMode(path, static_cast<unsigned>(p_Mode)))
        qFatal("the mode of %s cannot be set", qPrintable(path));
    FaultTrial trial;
    trial.Where = p_Name.isEmpty() ? QStringLiteral("the folder itself") : p_Name;
    trial.Undo = [&](FaultGame&) {
        if (QFileInfo::exists(path) && !SetMode(path, static_cast<unsigned>(p_ModeAfter)))
            qFatal("the mode of %s cannot be set", qPrintable(path));
    };
    trial.Run(*game, p_Tally);
}

FaultReport ReadOnly()
{
    if (!OrdinaryUser::IsPossible())
        return FaultReport::NotPossible(QStringLiteral("root is not stopped by permissions"));
    OrdinaryUser const user;
    FaultTally tally;
    for (char const* const folder : {"", "Data", "Data/enUS", "WTF"})
        TryReadOnly(QString::fromLatin1(folder), 0555, 0755, tally);
    for (QString const& name : Belongings::c_Lists + QStringList(Belongings::c_Config))
        TryReadOnly(name, 0444, 0644, tally);
    for (QString const& file : Files())
        TryReadOnly(file + ".part", 0444, 0644, tally);
    return tally.Report();
}

void TryImmutable(QString const& p_Name, FaultTally& p_Tally, bool& p_IsPossible)
{
    auto const game = OldGame();
    bool const isOther = Belongings::c_Lists.contains(p_Name) || p_Name == Belongings::c_Config;
    if (!isOther) // an old build's file, or nothing of it yet
        game->Put(p_Name, p_Name.endsWith(QLatin1String(".part")) ? QByteArray() : "old");
    auto hold = std::make_unique<ImmutableFile>(game->Path(p_Name));
    if (!hold->Holds()) {
        p_IsPossible = false;
        return;
    }
    // The file that cannot be replaced is looked at by the host only when it is unfinished.
    game->SetSetting("host/pelmora_app/unfinished", true);
    FaultTrial trial;
    trial.Where = p_Name;
    trial.Undo = [&](FaultGame&) { hold.reset(); };
    if (!isOther && !p_Name.endsWith(QLatin1String(".part")))
        trial.Allowed = {{p_Name, "old"}};
    trial.Run(*game, p_Tally);
}

FaultReport Immutable()
{
    bool isPossible = true;
    FaultTally tally;
    for (QString const& name : Written())
        TryImmutable(name, tally, isPossible);
    return isPossible ? tally.Report()
                      : FaultReport::NotPossible(
                            QStringLiteral("the file system has no immutable files, or "
                                           "this user may not make one"));
}

/// Puts a file of the player's in the way. \param p_File below the game's folder
void TryInTheWay(QString const& p_Where, QString const& p_Blocked, QString const& p_File,
                 RequestType p_Kind, FaultTally& p_Tally)
{
    std::unique_ptr<FaultGame> game;
    if (p_Kind == RequestType::Install) {
        game = std::make_unique<FaultGame>();
        game->Publish();
    } else {
        game = OldGame();
        Remove(*game, p_Blocked);
    }
    game->Put(p_File, c_OfThePlayer);
    FaultTrial trial;
    trial.Where = p_Where + QStringLiteral(", ") + FaultTrial::NameOf(p_Kind);
    trial.Kind = p_Kind;
    QStringList lost;
    trial.Undo = [&](FaultGame& p_Game) {
        if (p_Game.Read(p_File) != c_OfThePlayer)
            lost += QStringLiteral("the player's own %1 was lost").arg(p_File);
        Remove(p_Game, p_Blocked);
    };
    trial.NotKept = QStringList(p_File);
    trial.Run(*game, p_Tally);
    if (!lost.isEmpty())
        p_Tally.Add(trial.Where, 0, QStringLiteral("a loss"), lost);
}

FaultReport FolderForFile()
{
    FaultTally tally;
    for (RequestType const kind : {RequestType::Update, RequestType::Install})
        for (QString const& name : Written())
            TryInTheWay(name, name, name + QLatin1String("/own file"), kind, tally);
    return tally.Report();
}

FaultReport FileForFolder()
{
    FaultTally tally;
    for (RequestType const kind : {RequestType::Update, RequestType::Install})
        for (char const* const folder : {"Data", "Data/enUS", "WTF"}) {
            QString const name = QString::fromLatin1(folder);
            TryInTheWay(name, name, name, kind, tally);
        }
    return tally.Report();
}

} // namespace

std::vector<FaultRow> FolderFaults()
{
    return {{QStringLiteral("read-only folders and files"), ReadOnly},
            {QStringLiteral("immutable files"), Immutable},
            {QStringLiteral("a folder in the place of a file"), FolderForFile},
            {QStringLiteral("a file in the place of a folder"), FileForFolder}};
}

} // namespace Varnholt::TestSupport
