#include "Tests/Faults/FaultGame.hpp"

#include <QTimer>

#include <algorithm>

namespace Varnholt::TestSupport {

QString const FaultGame::c_First = QStringLiteral("Data/base.MPQ");
QString const FaultGame::c_Middle = QStringLiteral("Data/middle.MPQ");
QString const FaultGame::c_Last = QStringLiteral("Data/streamed 2.MPQ");

FaultGame::FaultGame()
{
    AddFiles();
    SampleFile const middle{c_Middle, SampleContent::Bytes(400'000, 7)};
    Content.Files.insert(Content.Files.begin() + 2, middle);
}

FaultGame::~FaultGame()
{
    Quit();
}

bool FaultGame::Begin()
{
    if (!Watcher)
        Watcher = std::make_unique<Referee>(*this);
    if (!Open())
        return false;
    Heart = std::make_unique<Pulse>(Session().Thread());
    return true;
}

void FaultGame::Quit()
{
    Silence = LongestSilence();
    Heart.reset();
    Close();
    if (Watcher)
        Watcher->Look();
}

QString FaultGame::RunWatched(Host::RunRequest const& p_Request,
                              std::function<void()> const& p_Meanwhile)
{
    constexpr int c_LookMilliseconds = 2;

    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [this] { Watcher->Look(); });
    look.start(c_LookMilliseconds);
    Start(p_Request);
    if (p_Meanwhile)
        p_Meanwhile();
    QString const end = End();
    Watcher->Look();
    if (end == QLatin1String("done"))
        for (QString const& file : Wrong())
            Broken += QStringLiteral("%1 was not right when the run was called done").arg(file);
    if (end.startsWith(QLatin1String("still")))
        Broken += QStringLiteral("a run did not end (%1)").arg(end);
    return end;
}

QString FaultGame::InstallWatched()
{
    Host::RunRequest request;
    request.Kind = RequestType::Install;
    request.Argument = Folder;
    return RunWatched(request);
}

QString FaultGame::UpdateWatched()
{
    return RunWatched({});
}

int FaultGame::UpdateUntilDone()
{
    constexpr int c_MostRuns = 3;

    for (int run = 1; run <= c_MostRuns; ++run)
        // Who was refused before the folder was chosen has nothing to update.
        if ((Setting(QStringLiteral("pelmora_app.Installed")).toBool()
                 ? UpdateWatched()
                 : InstallWatched()) == QLatin1String("done"))
            return run;
    Broken += QStringLiteral("the game was not complete after %1 more runs (%2)")
                  .arg(c_MostRuns)
                  .arg(Sentence());
    return 0;
}

void FaultGame::Expect(QString const& p_End, QString const& p_Expected, QString const& p_Words)
{
    if (p_End != p_Expected || !Sentence().contains(p_Words))
        Accuse(QStringLiteral("a run ended with %1 (%2)").arg(p_End, Sentence()));
}

QStringList FaultGame::Faults() const
{
    return Broken + (Watcher ? Watcher->Faults() : QStringList());
}

qint64 FaultGame::LongestSilence() const
{
    return Heart ? std::max(Silence, Heart->LongestSilence()) : Silence;
}

void FaultTally::Add(QString const& p_Where, int p_Injected, QString const& p_Outcome,
                     FaultGame const& p_Game)
{
    Add(p_Where, p_Injected, p_Outcome, p_Game.Faults(), p_Game.LongestSilence());
}

void FaultTally::Add(QString const& p_Where, int p_Injected, QString const& p_Outcome,
                     QStringList const& p_Faults, qint64 p_Silence)
{
    Sum.Injected += p_Injected;
    ++Outcomes[p_Outcome];
    for (QString const& fault : p_Faults)
        Sum.Faults += p_Where + QLatin1String(": ") + fault;
    Sum.Silence = std::max(Sum.Silence, p_Silence);
}

FaultReport FaultTally::Report() const
{
    FaultReport report = Sum;
    QStringList parts;
    for (auto row = Outcomes.constBegin(); row != Outcomes.constEnd(); ++row)
        parts += QStringLiteral("%1: %2").arg(row.key()).arg(row.value());
    report.Outcome = parts.join(QLatin1String("; "));
    return report;
}

} // namespace Varnholt::TestSupport
