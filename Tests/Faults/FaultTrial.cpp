#include "Tests/Faults/FaultTrial.hpp"

#include "Tests/Faults/Belongings.hpp"

#include <QDir>

namespace Varnholt::TestSupport {

void FaultTrial::Run(FaultGame& p_Game, FaultTally& p_Tally) const
{
    if (!p_Game.Begin()) {
        p_Tally.Add(Where, 0, QStringLiteral("the module does not load"),
                    {QStringLiteral("the module does not load")});
        return;
    }
    Belongings const before(p_Game, NotKept);
    for (auto const& file : Allowed)
        p_Game.Eyes().Allow(file.first, file.second);
    Host::RunRequest request;
    request.Kind = Kind;
    request.Argument = Kind == RequestType::Install ? p_Game.Folder : QString();
    request.Confirmed = true;
    int injected = 1;
    QString const end = p_Game.RunWatched(request, [&] {
        if (Strike)
            injected = Strike(p_Game);
    });
    if (!End.isEmpty())
        p_Game.Expect(end, End, Words);
    QStringList faults;
    if (injected == 0)
        faults += QStringLiteral("the fault never struck");
    if (end == QLatin1String("done") && !p_Game.Wrong().isEmpty())
        faults += QStringLiteral("it was called done and is not complete");
    if (Undo)
        Undo(p_Game);
    faults += before.Lost();

    int const runs = p_Game.UpdateUntilDone();
    QString outcome =
        end == QLatin1String("done") ? QStringLiteral("complete at once") : end + ", then complete";
    if (runs > 1)
        outcome += QStringLiteral(" in %1 runs").arg(runs);
    p_Game.Quit();
    p_Tally.Add(Where, injected, outcome,
                faults + before.Lost() + before.Strays() + p_Game.Faults(),
                p_Game.LongestSilence());
}

void FaultTrial::PutOld(FaultGame& p_Game)
{
    constexpr int c_OwnLines = 300;

    p_Game.PutInstalled();
    for (QString const& file :
         {QStringLiteral("Data/first build.MPQ"), QStringLiteral("readme.txt"),
          QStringLiteral("Data/streamed 1.MPQ"), FaultGame::c_Last})
        QFile::remove(p_Game.Path(file));
    p_Game.Put(Belongings::c_Lists[0], "Data/first build.MPQ\n");
    p_Game.Put(Belongings::c_Lists[1], "Data/streamed 1.MPQ\n" + FaultGame::c_Last.toUtf8() + '\n');
    // More than one page of memory: it can be half written.
    QByteArray config;
    for (int i = 0; i < c_OwnLines; ++i)
        config += "SET ownSetting" + QByteArray::number(i) + " \"1\"\n";
    p_Game.Put(Belongings::c_Config, config + "SET realmlist \"of before\"\n");
}

QString FaultTrial::NameOf(RequestType p_Kind)
{
    return p_Kind == RequestType::Install ? QStringLiteral("install") : QStringLiteral("update");
}

} // namespace Varnholt::TestSupport
