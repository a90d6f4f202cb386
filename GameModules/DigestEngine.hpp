#pragma once

#include "GameModules/FileDigest.hpp"

#include <QString>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Varnholt::Launcher {

/// The digests of many files, made by threads of its own ahead of the one who asks for them. Each
/// thread hashes up to sixteen files side by side, see `Md5Lanes`, with half a MiB of memory for
/// each of them, and has the system fetch a large one in parts of `c_AheadBytes`. For one user's
/// thread.
class DigestEngine {
public:
    struct File;
    using Ticket = std::shared_ptr<File>;

    /// At most, and one for each processor: 32 MiB of memory, and what a disk serves well.
    static constexpr std::size_t c_MostThreads = 4;
    static constexpr qint64 c_AheadBytes = qint64{4} * 1024 * 1024;

    DigestEngine() = default;
    /// Stops what is under way, as soon as the half MiB that each thread reads has come.
    ~DigestEngine();
    DigestEngine(DigestEngine const&) = delete;
    DigestEngine& operator=(DigestEngine const&) = delete;

    /// Has a file hashed, a large one before the small ones that wait with it. What is no file
    /// counts as one that cannot be opened.
    Ticket Add(QString const& p_Path);

    /// Waits for a digest; asks and answers as `FileDigest::Of`.
    FileDigest::Digest Take(Ticket const& p_File, std::function<bool()> const& p_Continue);

    /// Files that were added and not taken yet.
    std::size_t Count() const { return Untaken; }

private:
    class Worker;

    Ticket Next(std::size_t p_Busy);
    bool TakeBack(Ticket const& p_File);
    void Note(File& p_File, qint64 p_Hashed);
    void Finish(File& p_File, FileDigest::Digest p_Digest);
    bool IsStopped();

    std::size_t Untaken = 0; ///< of the user's thread

    std::mutex Guard; ///< of all below, and of what `File` says
    std::condition_variable Added;
    std::condition_variable Progressed;
    std::vector<Ticket> Waiting; ///< that no thread has begun with
    std::size_t UnderWay = 0;
    File* Wanted = nullptr; ///< that the user waits for
    bool Stopped = false;
    std::vector<std::thread> Threads;
};

} // namespace Varnholt::Launcher
