#include "Tests/Faults/Belongings.hpp"
#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"

#include <QDir>

namespace Varnholt::TestSupport {

namespace {

constexpr int c_Arrived = 5'000;

using Strike = std::function<bool(FaultGame& p_Game, QString const& p_File)>;

/// Somebody strikes while p_File arrives.
struct Removal {
    Strike Do;
    std::function<void(FaultGame&)> Undo = {};
    QStringList NotKept = {};
};

void Try(Removal const& p_Removal, QString const& p_File, RequestType p_Kind, FaultTally& p_Tally)
{
    FaultGame game;
    game.Publish();
    if (p_Kind == RequestType::Update) {
        FaultTrial::PutOld(game);
        QFile::remove(game.Path(p_File));
    }
    QString const path = game.Content.ServerPath(p_File);
    game.Server.Script("GET " + path).Then(Answer::SilentAfter(c_Arrived));
    FaultTrial trial;
    trial.Where = p_File + QStringLiteral(", ") + FaultTrial::NameOf(p_Kind);
    trial.Kind = p_Kind;
    trial.NotKept = p_Removal.NotKept;
    trial.Strike = [&](FaultGame& p_Game) {
        bool const struck = p_Game.WaitForPart(p_File, c_Arrived) && p_Removal.Do(p_Game, p_File);
        p_Game.Server.OpenGate(path);
        return struck ? 1 : 0;
    };
    trial.Undo = p_Removal.Undo;
    trial.Run(game, p_Tally);
}

FaultReport Run(Removal const& p_Removal)
{
    FaultTally tally;
    for (QString const& file : {FaultGame::c_First, FaultGame::c_Middle, FaultGame::c_Last})
        for (RequestType const kind : {RequestType::Install, RequestType::Update})
            Try(p_Removal, file, kind, tally);
    return tally.Report();
}

QStringList Everything()
{
    FaultGame game;
    FaultTrial::PutOld(game);
    return game.FilesOnDisk();
}

FaultReport FolderRemoved()
{
    return Run(
        {[](FaultGame& p_Game, QString const&) { return QDir(p_Game.Folder).removeRecursively(); },
         {},
         Everything()});
}

/// It is moved back when the run has ended, over what the run may have made in its old place.
FaultReport FolderRenamed()
{
    QString const away = QStringLiteral("moved away");
    return Run({[away](FaultGame& p_Game, QString const&) {
                    return QDir().rename(p_Game.Folder, p_Game.Base + away);
                },
                [away](FaultGame& p_Game) {
                    QDir(p_Game.Folder).removeRecursively();
                    if (!QDir().rename(p_Game.Base + away, p_Game.Folder))
                        qFatal("the folder cannot be moved back");
                }});
}

FaultReport PartRemoved()
{
    return Run({[](FaultGame& p_Game, QString const& p_File) {
        return QFile::remove(p_Game.Path(p_File + ".part"));
    }});
}

FaultReport PartTruncated()
{
    return Run({[](FaultGame& p_Game, QString const& p_File) {
        return QFile::resize(p_Game.Path(p_File + ".part"), c_Arrived / 2);
    }});
}

FaultReport PartExtended()
{
    return Run({[](FaultGame& p_Game, QString const& p_File) {
        QFile part(p_Game.Path(p_File + ".part"));
        return part.open(QIODevice::Append) && part.write("of somebody else") > 0;
    }});
}

FaultReport PartOverwritten()
{
    return Run({[](FaultGame& p_Game, QString const& p_File) {
        QFile part(p_Game.Path(p_File + ".part"));
        return part.open(QIODevice::ReadWrite) && part.write("of somebody else") > 0;
    }});
}

/// One that was found in order is not missed until the end of the run.
FaultReport FinishedFileRemoved()
{
    QString const locale = QStringLiteral("Data/enUS/locale.MPQ");
    return Run({[locale](FaultGame& p_Game, QString const& p_File) {
                    // The first file of an install has none before it.
                    bool const isThere = p_Game.Has(locale);
                    return QFile::remove(p_Game.Path(isThere ? locale : p_File + ".part"));
                },
                {},
                {locale}});
}

FaultReport ListsRemoved()
{
    return Run({[](FaultGame& p_Game, QString const&) {
                    bool isRemoved = false;
                    for (QString const& list : Belongings::c_Lists)
                        isRemoved |= QFile::remove(p_Game.Path(list));
                    return isRemoved;
                },
                {},
                Belongings::c_Lists});
}

FaultReport SettingsRemoved()
{
    return Run(
        {[](FaultGame& p_Game, QString const&) { return QFile::remove(p_Game.SettingsFile); }});
}

} // namespace

std::vector<FaultRow> RemovalFaults()
{
    return {{QStringLiteral("game folder removed in mid-run"), FolderRemoved},
            {QStringLiteral("game folder renamed away in mid-run"), FolderRenamed},
            {QStringLiteral("partial file removed in mid-transfer"), PartRemoved},
            {QStringLiteral("partial file truncated in mid-transfer"), PartTruncated},
            {QStringLiteral("partial file extended in mid-transfer"), PartExtended},
            {QStringLiteral("partial file overwritten in mid-transfer"), PartOverwritten},
            {QStringLiteral("finished file removed in mid-run"), FinishedFileRemoved},
            {QStringLiteral("lists removed in mid-run"), ListsRemoved},
            {QStringLiteral("settings file removed in mid-run"), SettingsRemoved}};
}

} // namespace Varnholt::TestSupport
