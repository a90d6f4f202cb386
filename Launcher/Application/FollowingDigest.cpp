#include "Launcher/Application/FollowingDigest.hpp"

#include "Launcher/Helper/Md5Lanes.hpp"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <fcntl.h>
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

/// Has the system write to the disk what stands in the file, part by part, and does not wait: at
/// the end of an installation all of it is flushed.
void Flush([[maybe_unused]] int p_File, [[maybe_unused]] qint64 p_From,
           [[maybe_unused]] qint64 p_To)
{
#ifdef SYNC_FILE_RANGE_WRITE
    constexpr qint64 c_PartBytes = qint64{8} * 1024 * 1024;

    qint64 const begin = p_From / c_PartBytes * c_PartBytes;
    qint64 const end = p_To / c_PartBytes * c_PartBytes;
    if (begin < end)
        ::sync_file_range(p_File, begin, end - begin, SYNC_FILE_RANGE_WRITE);
#endif
}

/// Of what was hashed and the bytes behind it.
QString DigestOf(Md5Lanes::State p_State, unsigned char const* p_Rest, std::size_t p_Bytes,
                 qint64 p_Total)
{
    std::array<unsigned char, 3 * Md5Lanes::c_BlockBytes> end;
    std::copy_n(p_Rest, p_Bytes, end.data());
    Md5Lanes::AddOne(p_State, end.data(),
                     Md5Lanes::Pad(end.data(), p_Bytes, static_cast<quint64>(p_Total)));
    return Md5Lanes::TextOf(p_State);
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
    constexpr qint64 c_ReadBytes = qint64{256} * 1024;

    QFile file(Path);
    struct stat status = {};
    bool isReadable = file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
                      ::fstat(file.handle(), &status) == 0;
    Md5Lanes::State state = Md5Lanes::c_Begin;
    std::vector<unsigned char> bytes(c_ReadBytes + Md5Lanes::c_BlockBytes);
    std::size_t rest = 0; // at the begin of them, less than a block
    qint64 hashed = 0;
    qint64 size = 0;
    while (AwaitBytes(hashed, size)) {
        qint64 const read = isReadable ? file.read(reinterpret_cast<char*>(bytes.data() + rest),
                                                   std::min(c_ReadBytes, size - hashed))
                                       : -1;
        isReadable = read > 0; // what was told to stand there does not
        if (isReadable) {
            rest += static_cast<std::size_t>(read);
            std::size_t const blocks = rest / Md5Lanes::c_BlockBytes;
            Md5Lanes::AddOne(state, bytes.data(), blocks);
            rest %= Md5Lanes::c_BlockBytes;
            std::memmove(bytes.data(), bytes.data() + blocks * Md5Lanes::c_BlockBytes, rest);
            Flush(file.handle(), hashed, hashed + read);
        }
        hashed = isReadable ? hashed + read : size;
        std::lock_guard const lock(Guard);
        Failed = Failed || !isReadable;
        Read.Size = hashed;
        Read.Device = static_cast<quint64>(status.st_dev);
        Read.Node = status.st_ino;
        if (hashed == Size) {
            Read.Md5 = DigestOf(state, bytes.data(), rest, hashed);
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
