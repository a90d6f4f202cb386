#pragma once

#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace Varnholt::Launcher {

/// The MD5 of a file that grows, made by a thread of its own from what stands on the disk already:
/// at the file's end nobody has to read it once more. For one thread, the one that writes.
class FollowingDigest {
public:
    /// What was hashed, and of which file.
    struct Result {
        QString Md5; ///< 32 upper-case hexadecimal digits
        qint64 Size = 0;
        quint64 Device = 0;
        quint64 Node = 0;
        qint64 Changed = 0; ///< milliseconds since 1970, of its content

        /// Whether that file stands at a path, and nothing was written to it since.
        bool IsOf(QString const& p_Path) const;
    };

    /// Begins at the start of a file that exists.
    explicit FollowingDigest(QString p_Path);
    /// Stops within a block.
    ~FollowingDigest();
    FollowingDigest(FollowingDigest const&) = delete;
    FollowingDigest& operator=(FollowingDigest const&) = delete;

    /// So many bytes stand in the file, and are not written again.
    void Follow(qint64 p_Bytes);
    /// Waits until all that `Follow` told of is hashed, or p_Continue, asked every 20 ms, says no.
    /// \return none when it was stopped or what stands there cannot be read
    std::optional<Result> CatchUp(std::function<bool()> const& p_Continue);

private:
    void Run();
    bool AwaitBytes(qint64 p_Hashed, qint64& p_Size);

    QString Path;
    std::mutex Guard; ///< of all below
    std::condition_variable Grown;
    std::condition_variable Progressed;
    qint64 Size = 0; ///< bytes that may be read
    bool Stopped = false;
    bool Failed = false;
    Result Read; ///< so far
    std::thread Thread;
};

} // namespace Varnholt::Launcher
