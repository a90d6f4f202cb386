#include "Tests/Faults/ProcessGame.hpp"

#include <QThread>

#include <atomic>
#include <vector>

namespace Varnholt::TestSupport {

namespace {

constexpr qint32 c_FirstBuildOnly = 0x20;

QByteArray const c_OwnConfig = "SET gxWindow \"1\"\nSET realmlist \"of before\"\n";

} // namespace

ProcessGame::ProcessGame(Task p_Task, Size p_Size)
    : What(p_Task)
{
    AddOld(p_Size);
    auto const old = Content.Files;
    if (What == Task::Update) {
        PutInstalled();
        Put(Belongings::c_Config, c_OwnConfig);
        Put(Belongings::c_Lists[0], "");
        Put(Belongings::c_Lists[1], "");
        MakeNewBuild();
    }
    Publish();
    Eyes = std::make_unique<Referee>(*this);
    if (What == Task::Update)
        for (SampleFile const& file : old)
            Eyes->Allow(file.Path, file.Bytes);
    Before = std::make_unique<Belongings>(*this);
}

void ProcessGame::AddOld(Size p_Size)
{
    if (p_Size == Size::Plain) {
        AddFiles();
        return;
    }
    Content.Add({"Data/base.MPQ", SampleContent::Bytes(6'000, 1)})
        .Add({"first", SampleContent::Bytes(300, 2), c_FirstBuildOnly})
        .Add({"streamed", SampleContent::Bytes(500, 3), 0, {}, true});
}

/// Some files stay, some have other bytes, one is new.
void ProcessGame::MakeNewBuild()
{
    constexpr quint32 c_OtherSeed = 100;

    Content.Build = QStringLiteral("build_2");
    quint32 seed = c_OtherSeed;
    for (std::size_t i = 0; i < Content.Files.size(); i += 2) {
        QByteArray& bytes = Content.Files[i].Bytes;
        bytes = SampleContent::Bytes(bytes.size() + 1, ++seed);
    }
    Content.Add({"Data/new.MPQ", SampleContent::Bytes(400, ++seed)});
}

QStringList ProcessGame::Command() const
{
    return What == Task::Install ? QStringList{QStringLiteral("install"), Folder}
                                 : QStringList{QStringLiteral("update")};
}

void ProcessGame::SlowDown()
{
    constexpr int c_Pieces = 6;
    constexpr int c_PauseMilliseconds = 8;

    for (SampleFile const& file : Content.Files)
        Server.Script(Content.ServerPath(file.Path))
            .Always(Answer::Drip(file.Bytes.size() / c_Pieces + 1, c_PauseMilliseconds));
}

void ProcessGame::Judge()
{
    Eyes->Look();
    for (QString const& fault : Before->Lost())
        if (!Broken.contains(fault))
            Broken += fault;
}

void ProcessGame::Complete()
{
    Outcome const end = HostProcess(*this, Command()).Finish();
    Judge();
    if (end.Status != 0)
        Broken += QStringLiteral("the next run ended with %1: %2")
                      .arg(end.Status)
                      .arg(end.Err.trimmed().right(300));
    for (QString const& file : Wrong())
        Broken += QStringLiteral("%1 is not right after the next run").arg(file);
    Broken += Before->Strays();
}

QString ProcessGame::Name(Task p_Task)
{
    return p_Task == Task::Install ? QStringLiteral("install") : QStringLiteral("update");
}

void InParallel(int p_Count, int p_Threads, std::function<void(int)> const& p_Work)
{
    std::atomic<int> next{0};
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 0; i < p_Threads; ++i) {
        threads.emplace_back(QThread::create([&] {
            for (int item = next++; item < p_Count; item = next++)
                p_Work(item);
        }));
        threads.back()->start();
    }
    for (auto const& thread : threads)
        thread->wait();
}

} // namespace Varnholt::TestSupport
