#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"
#include "Tests/Support/SmallVolume.hpp"

#include <QDir>

#include <atomic>
#include <memory>

namespace Varnholt::TestSupport {

namespace {

constexpr char c_VolumeSize[] = "1200k"; // the game is half of it

FaultReport NotPossible()
{
    return FaultReport::NotPossible(QStringLiteral("this user may not mount a volume"));
}

/// A game on a volume of its own that fills up.
struct DiskGame {
    DiskGame()
        : Volume(Game.Base + QStringLiteral("Jeux été"), c_VolumeSize)
    {
        Game.Publish();
        Game.Options.FreeBytes = [this](QString const& p_Path) {
            return IsUnknown ? qint64(-1) : Host::HostOptions::VolumeFreeBytes(p_Path);
        };
    }
    ~DiskGame() { Game.Quit(); }
    /// \return how often it struck: not at all where the volume is not one of its own
    int Fill(int p_PagesLeft = 0)
    {
        if (!Volume.IsMounted())
            return 0;
        Filler = std::make_unique<VolumeFiller>(Game.Base + QStringLiteral("Jeux été/other"),
                                                p_PagesLeft);
        return Filler->IsFull() ? 1 : 0;
    }
    void Free()
    {
        Filler.reset();
        IsUnknown = false;
    }

    FaultGame Game;
    SmallVolume Volume;
    std::unique_ptr<VolumeFiller> Filler;
    std::atomic<bool> IsUnknown{false}; ///< the room: the write itself has to fail
};

void FillInMidFile(QString const& p_File, RequestType p_Kind, bool p_IsUnknown, FaultTally& p_Tally)
{
    constexpr int c_Arrived = 5'000; // in the middle of a page

    DiskGame disk;
    FaultGame& game = disk.Game;
    if (p_Kind == RequestType::Update) {
        FaultTrial::PutOld(game);
        QFile::remove(game.Path(p_File));
    }
    QString const path = game.Content.ServerPath(p_File);
    game.Server.Script("GET " + path).Then(Answer::SilentAfter(c_Arrived));
    FaultTrial trial;
    trial.Where =
        QStringLiteral("%1, %2, %3")
            .arg(p_File, FaultTrial::NameOf(p_Kind),
                 p_IsUnknown ? QStringLiteral("room unknown") : QStringLiteral("room known"));
    trial.Kind = p_Kind;
    trial.Strike = [&](FaultGame& p_Game) {
        if (!p_Game.WaitForPart(p_File, c_Arrived))
            return 0;
        disk.IsUnknown = p_IsUnknown;
        int const struck = disk.Fill();
        p_Game.Server.OpenGate(path);
        return struck;
    };
    trial.Undo = [&](FaultGame&) { disk.Free(); };
    trial.Run(game, p_Tally);
}

FaultReport WhileAFileArrives()
{
    if (!DiskGame().Volume.IsMounted())
        return NotPossible();
    FaultTally tally;
    for (QString const& file : {FaultGame::c_First, FaultGame::c_Middle, FaultGame::c_Last})
        for (RequestType const kind : {RequestType::Install, RequestType::Update})
            for (bool const isUnknown : {true, false})
                FillInMidFile(file, kind, isUnknown, tally);
    return tally.Report();
}

/// Makes a game whose run finds room for few pages only.
void FullFromTheBeginning(QString const& p_Where, int p_PagesLeft,
                          std::function<void(FaultGame&)> const& p_Prepare, FaultTally& p_Tally)
{
    DiskGame disk;
    FaultTrial::PutOld(disk.Game);
    p_Prepare(disk.Game);
    int const struck = disk.Fill(p_PagesLeft);
    disk.IsUnknown = true;
    FaultTrial trial;
    trial.Strike = [struck](FaultGame&) { return struck; };
    trial.Where = QStringLiteral("%1, room for %2 pages").arg(p_Where).arg(p_PagesLeft);
    trial.Undo = [&](FaultGame&) { disk.Free(); };
    trial.Run(disk.Game, p_Tally);
}

constexpr int c_MostPages = 6;

/// The first files to arrive find room, so that their lines are to be struck from the lists.
FaultReport WhileAListIsWritten()
{
    if (!DiskGame().Volume.IsMounted())
        return NotPossible();
    FaultTally tally;
    for (int pages = 0; pages <= c_MostPages; ++pages) {
        FullFromTheBeginning(
            QStringLiteral("ordinary update"), pages, [](FaultGame&) {}, tally);
        FullFromTheBeginning(
            QStringLiteral("long lists"), pages,
            [](FaultGame& p_Game) {
                // Lines that name no file of the build are nobody's business and stay.
                QByteArray unknown;
                for (int i = 0; i < 400; ++i)
                    unknown += "Data/of another build " + QByteArray::number(i) + '\n';
                p_Game.Put("ToDownload.db", unknown + p_Game.Read("ToDownload.db"));
                p_Game.Put("ToDownloadBase.db", unknown + p_Game.Read("ToDownloadBase.db"));
            },
            tally);
        FullFromTheBeginning(
            QStringLiteral("every file looked at again"), pages,
            [](FaultGame& p_Game) { p_Game.SetSetting("host/pelmora_app/unfinished", true); },
            tally);
    }
    return tally.Report();
}

FaultReport WhileTheConfigurationIsWritten()
{
    if (!DiskGame().Volume.IsMounted())
        return NotPossible();
    FaultTally tally;
    for (int pages = 0; pages <= c_MostPages; ++pages) {
        auto const complete = [](FaultGame& p_Game) {
            for (SampleFile const& file : p_Game.Content.Files)
                if (file.Locale != QLatin1String("frFR"))
                    p_Game.Put(file.Path, file.Bytes);
            for (char const* const list : {"ToDownload.db", "ToDownloadBase.db"})
                p_Game.Put(list, "");
        };
        FullFromTheBeginning(QStringLiteral("nothing to fetch"), pages, complete, tally);
        FullFromTheBeginning(
            QStringLiteral("no configuration yet"), pages,
            [&](FaultGame& p_Game) {
                complete(p_Game);
                QDir(p_Game.Path("WTF")).removeRecursively();
            },
            tally);
    }
    return tally.Report();
}

/// Settings and game share a volume, as a user's folder and what is installed below it do.
FaultReport WhileTheSettingsAreWritten()
{
    if (!DiskGame().Volume.IsMounted())
        return NotPossible();
    FaultTally tally;
    for (int pages = 0; pages <= c_MostPages; ++pages)
        for (bool const isUnfinished : {false, true}) {
            DiskGame disk;
            FaultGame& game = disk.Game;
            game.SettingsFile = game.Base + QStringLiteral("Jeux été/host.ini");
            game.Options.SettingsFile = game.SettingsFile;
            FaultTrial::PutOld(game);
            game.SetSetting("of the player", QByteArray(9'000, 's'));
            if (isUnfinished)
                game.SetSetting("host/pelmora_app/unfinished", true);
            int const struck = disk.Fill(pages);
            disk.IsUnknown = true;
            QStringList const keys = game.SettingKeys();
            FaultTrial trial;
            trial.Strike = [struck](FaultGame&) { return struck; };
            trial.Where = QStringLiteral("room for %1 pages").arg(pages);
            QStringList lost;
            trial.Undo = [&](FaultGame& p_Game) {
                QStringList const left = p_Game.SettingKeys();
                for (QString const& key : keys)
                    if (!left.contains(key) && !key.endsWith(QLatin1String("unfinished")))
                        lost += QStringLiteral("the setting %1 was lost").arg(key);
                disk.Free();
            };
            trial.Run(game, tally);
            tally.Add(trial.Where, 0, QStringLiteral("settings looked at"), lost);
        }
    return tally.Report();
}

} // namespace

std::vector<FaultRow> DiskFaults()
{
    return {
        {QStringLiteral("full disk while a file arrives"), WhileAFileArrives},
        {QStringLiteral("full disk while a list is written"), WhileAListIsWritten},
        {QStringLiteral("full disk while the configuration is written"),
         WhileTheConfigurationIsWritten},
        {QStringLiteral("full disk while the settings are written"), WhileTheSettingsAreWritten}};
}

} // namespace Varnholt::TestSupport
