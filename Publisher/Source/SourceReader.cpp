#include "Publisher/Source/SourceReader.hpp"

#include "Launcher/Helper/Md5Lanes.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Source/NativePath.hpp"

#include <QFile>

#include <array>
#include <memory>

namespace Varnholt::Publisher::SourceReader {

namespace {

namespace Md5Lanes = Launcher::Md5Lanes;

constexpr std::size_t c_BlockBytes = 512UL * 1024;
static_assert(c_MostFiles == Md5Lanes::c_Count);

std::chrono::nanoseconds Since1970(timespec const& p_Time)
{
    return std::chrono::seconds(p_Time.tv_sec) + std::chrono::nanoseconds(p_Time.tv_nsec);
}

bool IsAsScanned(QFile const& p_Open, SourceFile const& p_File)
{
    struct stat status = {};
    return ::fstat(p_Open.handle(), &status) == 0 && status.st_size == p_File.Size &&
           status.st_ino == p_File.Inode && ChangeTime(status) == p_File.Changed;
}

/// A file on its way through a lane.
class Stream {
public:
    explicit Stream(Request const& p_Request)
        : Of(p_Request)
        , File(NativePath::ToText(p_Request.File->Location))
        , Block(c_BlockBytes + 2 * Md5Lanes::c_BlockBytes)
    {
        if (!File.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            Fail();
    }

    bool IsAtEnd() const { return Ended; }
    unsigned char const* Data() const { return Block.data(); }

    /// \return false at the end of the file, when its digest is known
    bool FillBlock()
    {
        std::size_t filled = 0;
        qint64 bytes = 0;
        while (filled < c_BlockBytes &&
               (bytes = File.read(Chars() + filled, static_cast<qint64>(c_BlockBytes - filled))) >
                   0)
            filled += static_cast<std::size_t>(bytes);
        if (bytes < 0)
            Fail();
        Total += filled;
        if (filled > 0)
            Of.Sink(Chars(), static_cast<qint64>(filled));
        if (filled == c_BlockBytes)
            return true;
        Ended = true;
        if (static_cast<qint64>(Total) != Of.File->Size || !IsAsScanned(File, *Of.File))
            throw Failure(ChangedText(*Of.File));
        Md5Lanes::AddOne(State, Data(), Md5Lanes::Pad(Block.data(), filled, Total));
        return false;
    }

    QString Md5() const { return Md5Lanes::TextOf(State); }

    Md5Lanes::State State = Md5Lanes::c_Begin;

private:
    char* Chars() { return reinterpret_cast<char*>(Block.data()); }

    [[noreturn]] void Fail() const
    {
        throw Failure(Of.File->Path + QStringLiteral(": cannot be read: ") + File.errorString());
    }

    Request const& Of;
    QFile File;
    std::vector<unsigned char> Block;
    std::size_t Total = 0;
    bool Ended = false;
};

/// A lane that nobody uses hashes another's data, and its result is dropped.
void HashBlocks(std::vector<Stream*> const& p_Full)
{
    constexpr std::size_t c_Blocks = c_BlockBytes / Md5Lanes::c_BlockBytes;

    if (p_Full.size() <= Md5Lanes::c_Few) {
        for (Stream* const stream : p_Full)
            Md5Lanes::AddOne(stream->State, stream->Data(), c_Blocks);
        return;
    }
    Md5Lanes::State nothing = Md5Lanes::c_Begin;
    std::array<Md5Lanes::State*, Md5Lanes::c_Count> states;
    std::array<unsigned char const*, Md5Lanes::c_Count> data;
    states.fill(&nothing);
    data.fill(p_Full.front()->Data());
    for (std::size_t i = 0; i < p_Full.size(); ++i) {
        states[i] = &p_Full[i]->State;
        data[i] = p_Full[i]->Data();
    }
    Md5Lanes::AddAll(states, data, c_Blocks);
}

} // namespace

std::chrono::nanoseconds ModificationTime(struct stat const& p_Status)
{
#ifdef Q_OS_MACOS
    return Since1970(p_Status.st_mtimespec);
#else
    return Since1970(p_Status.st_mtim);
#endif
}

qint64 ChangeTime(struct stat const& p_Status)
{
#ifdef Q_OS_MACOS
    return Since1970(p_Status.st_ctimespec).count();
#else
    return Since1970(p_Status.st_ctim).count();
#endif
}

QString ChangedText(SourceFile const& p_File)
{
    return p_File.Path + QStringLiteral(": the file changed while it was being published");
}

std::vector<QString> Read(std::vector<Request> const& p_Requests)
{
    std::vector<std::unique_ptr<Stream>> streams;
    streams.reserve(p_Requests.size());
    for (Request const& request : p_Requests)
        streams.push_back(std::make_unique<Stream>(request));
    std::vector<Stream*> full;
    do {
        full.clear();
        for (auto const& stream : streams) {
            if (!stream->IsAtEnd() && stream->FillBlock())
                full.push_back(stream.get());
        }
        HashBlocks(full);
    } while (!full.empty());
    std::vector<QString> digests;
    digests.reserve(streams.size());
    for (auto const& stream : streams)
        digests.push_back(stream->Md5());
    return digests;
}

QString Read(SourceFile const& p_File, BlockSink const& p_Sink)
{
    return Read({{&p_File, p_Sink}}).front();
}

} // namespace Varnholt::Publisher::SourceReader
