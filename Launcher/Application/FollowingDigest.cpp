#include "Launcher/Application/FollowingDigest.hpp"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace Varnholt::Launcher {

namespace {

struct stat StatusOf(QString const& p_Path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(p_Path).constData(), &status) != 0)
        status = {};
    return status;
}

qint64 ChangeOf(QString const& p_Path)
{
    return QFileInfo(p_Path).lastModified().toMSecsSinceEpoch();
}

} // namespace

bool FollowingDigest::Result::IsOf(QString const& p_Path) const
{
    struct stat const status = StatusOf(p_Path);
    return Node != 0 && Node == status.st_ino && Device == static_cast<quint64>(status.st_dev) &&
           Size == status.st_size && Changed == ChangeOf(p_Path);
}

FollowingDigest::FollowingDigest(QString p_Path)
    : Path(std::move(p_Path))
    , Thread([this] { Run(); })
{
}

FollowingDigest::~FollowingDigest()
{
    {
        std::lock_guard const lock(Guard);
        Stopped = true;
    }
    Grown.notify_one();
    Thread.join();
}

void FollowingDigest::Follow(qint64 p_Bytes)
{
    {
        std::lock_guard const lock(Guard);
        Size = p_Bytes;
    }
    Grown.notify_one();
}

/// \return false when it is to end
bool FollowingDigest::AwaitBytes(qint64 p_Hashed, qint64& p_Size)
{
    std::unique_lock lock(Guard);
    Grown.wait(lock, [&] { return Stopped || Size > p_Hashed; });
    p_Size = Size;
    return !Stopped;
}

void FollowingDigest::Run()
{
    constexpr qint64 c_BlockBytes = qint64{256} * 1024;

    QFile file(Path);
    struct stat status = {};
    bool isReadable = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
                      ::fstat(file.handle(), &status) == 0;
    QCryptographicHash hash(QCryptographicHash::Md5);
    std::vector<char> block(c_BlockBytes);
    qint64 hashed = 0;
    qint64 size = 0;
    while (AwaitBytes(hashed, size)) {
        qint64 const read =
            isReadable ? file.read(block.data(), std::min(c_BlockBytes, size - hashed)) : -1;
        isReadable = read > 0; // what was told to stand there does not
        if (isReadable)
            hash.addData(block.data(), static_cast<int>(read));
        hashed = isReadable ? hashed + read : size;
        std::lock_guard const lock(Guard);
        Failed = Failed || !isReadable;
        Read.Size = hashed;
        Read.Device = static_cast<quint64>(status.st_dev);
        Read.Node = status.st_ino;
        if (hashed == Size) {
            Read.Md5 = QString::fromLatin1(hash.result().toHex()).toUpper();
            Progressed.notify_one();
        }
    }
}

std::optional<FollowingDigest::Result>
FollowingDigest::CatchUp(std::function<bool()> const& p_Continue)
{
    constexpr std::chrono::milliseconds c_Interval(20);

    std::unique_lock lock(Guard);
    while (Read.Size != Size) {
        if (Progressed.wait_for(lock, c_Interval) == std::cv_status::timeout && !p_Continue())
            return std::nullopt;
    }
    Read.Changed = ChangeOf(Path);
    return Failed || !Read.IsOf(Path) ? std::nullopt : std::optional(Read);
}

} // namespace Varnholt::Launcher
