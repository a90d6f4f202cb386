#include "GameModules/DigestEngine.hpp"

#include "Launcher/Helper/Md5Lanes.hpp"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <utility>

namespace Varnholt::Launcher {

namespace {

constexpr std::chrono::milliseconds c_Patience(20);
constexpr std::size_t c_ReadBytes = 512UL * 1024;

/// Lets the system fetch the next part of a file at once: a hard disk that is asked by every lane
/// in turn would spend its time on the way between their files. Where that is unknown, nothing is
/// lost.
void FetchAhead([[maybe_unused]] int p_File, [[maybe_unused]] qint64 p_From)
{
#ifdef POSIX_FADV_WILLNEED
    constexpr qint64 c_Step = c_ReadBytes; // of more at a time systems leave the rest out
    for (qint64 at = 0; at < DigestEngine::c_AheadBytes; at += c_Step)
        ::posix_fadvise(p_File, p_From + at, c_Step, POSIX_FADV_WILLNEED);
#endif
}

} // namespace

struct DigestEngine::File {
    QString Path;
    qint64 Size = 0;
    qint64 Hashed = 0; ///< bytes
    bool IsDone = false;
    FileDigest::Digest Digest;
};

/// What one thread does.
class DigestEngine::Worker {
public:
    explicit Worker(DigestEngine& p_Engine)
        : Engine(p_Engine)
    {
    }

    void Run();

private:
    /// A file on its way through a lane.
    struct Lane {
        Ticket Of; ///< null: the lane is free
        QFile Content;
        Md5Lanes::State State = Md5Lanes::c_Begin;
        std::unique_ptr<unsigned char[]> Buffer; ///< made for the first file
        std::size_t Begin = 0;                   ///< of what is in the buffer and not hashed yet
        std::size_t End = 0;
        qint64 Total = 0;      ///< bytes read
        qint64 Ahead = 0;      ///< bytes that are being fetched
        bool IsPadded = false; ///< what is in the buffer is the last of it
        bool IsBroken = false; ///< by an error, and not by its end

        std::size_t Blocks() const { return (End - Begin) / Md5Lanes::c_BlockBytes; }
    };

    bool Open(Lane& p_Lane, Ticket p_File);
    void Read(Lane& p_Lane);
    void Close(Lane& p_Lane);
    std::size_t Fill();
    void Hash(std::size_t p_Busy);
    void Advance(Lane& p_Lane, std::size_t p_Blocks);

    DigestEngine& Engine;
    std::array<Lane, Md5Lanes::c_Count> Lanes;
};

void DigestEngine::Worker::Run()
{
    while (std::size_t const busy = Fill())
        Hash(busy);
}

/// Sees to it that every lane has something to hash, as far as there is something.
/// \return how many have; 0: the engine has been stopped
std::size_t DigestEngine::Worker::Fill()
{
    std::size_t busy = 0;
    for (Lane const& lane : Lanes)
        busy += lane.Of ? 1 : 0;
    for (Lane& lane : Lanes)
        while (!lane.Of || lane.Blocks() == 0) {
            if (Engine.IsStopped()) // each read may take its time
                return 0;
            if (lane.Of && !lane.IsPadded) {
                Read(lane);
                continue;
            }
            if (lane.Of) {
                Close(lane);
                --busy;
            }
            Ticket const next = Engine.Next(busy);
            if (!next)
                break;
            busy += Open(lane, next) ? 1 : 0;
        }
    return Engine.IsStopped() ? 0 : busy;
}

bool DigestEngine::Worker::Open(Lane& p_Lane, Ticket p_File)
{
    p_Lane.Content.setFileName(p_File->Path);
    if (!p_Lane.Content.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        Engine.Finish(*p_File, {});
        return false;
    }
    p_Lane.Of = std::move(p_File);
    p_Lane.State = Md5Lanes::c_Begin;
    p_Lane.Begin = p_Lane.End = 0;
    p_Lane.Total = p_Lane.Ahead = 0;
    p_Lane.IsPadded = p_Lane.IsBroken = false;
    if (!p_Lane.Buffer)
        p_Lane.Buffer.reset(new unsigned char[c_ReadBytes]);
    return true;
}

/// Called when less than a block is left.
void DigestEngine::Worker::Read(Lane& p_Lane)
{
    unsigned char* const buffer = p_Lane.Buffer.get();
    std::size_t const rest = p_Lane.End - p_Lane.Begin;
    std::memmove(buffer, buffer + p_Lane.Begin, rest);
    p_Lane.Begin = 0;
    p_Lane.End = rest;
    if (p_Lane.Of->Size > static_cast<qint64>(c_ReadBytes) && p_Lane.Total >= p_Lane.Ahead) {
        FetchAhead(p_Lane.Content.handle(), p_Lane.Total);
        p_Lane.Ahead = p_Lane.Total + c_AheadBytes;
    }
    qint64 const read = p_Lane.Content.read(reinterpret_cast<char*>(buffer + rest),
                                            static_cast<qint64>(c_ReadBytes - rest));
    if (read <= 0) {
        p_Lane.IsBroken = read < 0;
        p_Lane.IsPadded = true;
        p_Lane.End = Md5Lanes::Pad(buffer, rest, static_cast<std::uint64_t>(p_Lane.Total)) *
                     Md5Lanes::c_BlockBytes;
        return;
    }
    p_Lane.End += static_cast<std::size_t>(read);
    p_Lane.Total += read;
}

void DigestEngine::Worker::Close(Lane& p_Lane)
{
    Engine.Finish(*p_Lane.Of, {true, !p_Lane.IsBroken, Md5Lanes::TextOf(p_Lane.State)});
    p_Lane.Content.close();
    p_Lane.Of.reset();
}

void DigestEngine::Worker::Hash(std::size_t p_Busy)
{
    constexpr std::size_t c_MostBlocks = 1024; // between two looks at whether to stop

    std::size_t blocks = c_MostBlocks;
    Lane* busy = nullptr;
    for (Lane& lane : Lanes)
        if (lane.Of) {
            busy = &lane;
            blocks = std::min(blocks, lane.Blocks());
            if (p_Busy <= Md5Lanes::c_Few) {
                std::size_t const own = std::min(c_MostBlocks, lane.Blocks());
                Md5Lanes::AddOne(lane.State, lane.Buffer.get() + lane.Begin, own);
                Advance(lane, own);
            }
        }
    if (p_Busy <= Md5Lanes::c_Few)
        return;
    // A lane that is free does the work of another into nothing.
    Md5Lanes::State nothing = Md5Lanes::c_Begin;
    std::array<Md5Lanes::State*, Md5Lanes::c_Count> states;
    std::array<unsigned char const*, Md5Lanes::c_Count> data;
    for (std::size_t i = 0; i < Lanes.size(); ++i) {
        Lane* const lane = Lanes[i].Of ? &Lanes[i] : busy;
        states[i] = Lanes[i].Of ? &lane->State : &nothing;
        data[i] = lane->Buffer.get() + lane->Begin;
    }
    Md5Lanes::AddAll(states, data, blocks);
    for (Lane& lane : Lanes)
        if (lane.Of)
            Advance(lane, blocks);
}

void DigestEngine::Worker::Advance(Lane& p_Lane, std::size_t p_Blocks)
{
    p_Lane.Begin += p_Blocks * Md5Lanes::c_BlockBytes;
    Engine.Note(*p_Lane.Of, p_Lane.Total - static_cast<qint64>(p_Lane.End - p_Lane.Begin));
}

DigestEngine::~DigestEngine()
{
    {
        std::lock_guard const lock(Guard);
        Stopped = true;
    }
    Added.notify_all();
    for (std::thread& thread : Threads)
        thread.join();
}

DigestEngine::Ticket DigestEngine::Add(QString const& p_Path)
{
    auto file = std::make_shared<File>();
    QFileInfo const info(p_Path);
    file->Path = p_Path;
    file->Size = info.size();
    file->IsDone = !info.isFile(); // it could be one that nobody ever writes to
    ++Untaken;
    if (file->IsDone)
        return file;
    std::lock_guard const lock(Guard);
    Waiting.push_back(file);
    std::size_t const most =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, c_MostThreads);
    if (Threads.size() < most)
        Threads.emplace_back([this] { Worker(*this).Run(); });
    Added.notify_one();
    return file;
}

FileDigest::Digest DigestEngine::Take(Ticket const& p_File, std::function<bool()> const& p_Continue)
{
    --Untaken;
    qint64 asked = 0;
    for (bool isDone = false; !isDone;) {
        qint64 hashed = 0;
        {
            std::unique_lock lock(Guard);
            Wanted = p_File.get();
            bool const hasMore = Progressed.wait_for(lock, c_Patience, [&] {
                return p_File->IsDone || p_File->Hashed >= asked + FileDigest::c_BlockBytes;
            });
            // With every lane in a file of gigabytes, or a slow disk under them, nobody would hear
            // of a stop meanwhile: what is read in a moment is read here, and of the rest a
            // question comes before its block.
            if (!hasMore &&
                (TakeBack(p_File) || (p_File->Size <= qint64{c_ReadBytes} && asked == 0))) {
                lock.unlock();
                return FileDigest::Of(p_File->Path, p_Continue);
            }
            isDone = p_File->IsDone;
            hashed = p_File->Hashed;
            if (!hasMore)
                hashed = std::min(asked + FileDigest::c_BlockBytes, p_File->Size);
        }
        for (; asked + (isDone ? 0 : FileDigest::c_BlockBytes - 1) < hashed;
             asked += FileDigest::c_BlockBytes)
            if (!p_Continue())
                return {true, false, {}};
    }
    return p_File->Digest;
}

/// \return false when a thread has begun with it
bool DigestEngine::TakeBack(Ticket const& p_File)
{
    auto const file = std::find(Waiting.begin(), Waiting.end(), p_File);
    bool const isWaiting = file != Waiting.end();
    if (isWaiting)
        Waiting.erase(file);
    return isWaiting;
}

/// A file for a thread that has some under way already; waits when it has none. \return null: none
/// for now, or never again
DigestEngine::Ticket DigestEngine::Next(std::size_t p_Busy)
{
    std::unique_lock lock(Guard);
    if (p_Busy == 0)
        Added.wait(lock, [this] { return Stopped || !Waiting.empty(); });
    // Two threads with a file each are faster than one with two.
    if (Stopped || Waiting.empty() || p_Busy * Threads.size() > UnderWay)
        return nullptr;
    auto next = std::find_if(Waiting.begin(), Waiting.end(),
                             [this](Ticket const& p_File) { return p_File.get() == Wanted; });
    if (next == Waiting.end())
        next = std::max_element(Waiting.begin(), Waiting.end(),
                                [](Ticket const& p_File, Ticket const& p_Other) {
                                    return p_File->Size < p_Other->Size;
                                });
    Ticket file = *next;
    Waiting.erase(next);
    ++UnderWay;
    return file;
}

void DigestEngine::Note(File& p_File, qint64 p_Hashed)
{
    std::lock_guard const lock(Guard);
    p_File.Hashed = p_Hashed;
    if (&p_File == Wanted)
        Progressed.notify_one();
}

void DigestEngine::Finish(File& p_File, FileDigest::Digest p_Digest)
{
    std::lock_guard const lock(Guard);
    p_File.Digest = std::move(p_Digest);
    p_File.IsDone = true;
    --UnderWay;
    if (&p_File == Wanted)
        Progressed.notify_one();
}

bool DigestEngine::IsStopped()
{
    std::lock_guard const lock(Guard);
    return Stopped;
}

} // namespace Varnholt::Launcher
