#include "Host/Gateway/Exchange.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

std::shared_ptr<Exchange::Reader> Exchange::Open(std::string const& p_Path, std::uint64_t p_Offset,
                                                 std::optional<std::uint64_t> p_Size)
{
    Lock const lock(Guard);
    File const file = FileOf(p_Path, false);
    auto const leave = [this](Reader* p_Reader) {
        Lock const ownLock(Guard);
        std::unique_ptr<Reader> const reader(p_Reader);
        Readers.erase(std::find(Readers.begin(), Readers.end(), p_Reader));
        if (reader->Run == Run)
            --reader->File->Readers;
    };
    std::shared_ptr<Reader> reader(new Reader, leave);
    reader->File = file;
    reader->At = p_Offset;
    reader->Size = p_Size;
    reader->Run = Run;
    Readers.push_back(reader.get());
    ++file->Readers;
    if (SizesFirst) {
        reader->NotBefore = TimePoint::max();
        return reader;
    }
    file->IsReadFromStart = file->IsReadFromStart || p_Offset == 0;
    if (file->PlanIndex != FileContent::c_Unplanned && file->PlanIndex > PlanNext) {
        PlanNext = file->PlanIndex;
        PlanAhead = std::max(PlanAhead, PlanNext);
    }
    return reader;
}

/// Whether a client gets no more, and is to begin anew.
bool Exchange::IsOver(Reader const& p_Reader) const
{
    return IsOver(p_Reader.Run) || p_Reader.File->Refusal ||
           (p_Reader.Size && p_Reader.File->Size != p_Reader.Size);
}

/// Whether there is something for a client, or the end.
bool Exchange::IsServed(Reader const& p_Reader) const
{
    FileContent const& file = *p_Reader.File;
    return MayRead(p_Reader) && (file.EndsAt(p_Reader.At) || file.At(p_Reader.At));
}

Exchange::Given Exchange::Next(Reader& p_Reader, FileContent::Bytes& p_Bytes)
{
    constexpr Milliseconds c_FirstWait{10}; // a client that wanted the headers only is gone by then
    constexpr Milliseconds c_Wait{100};

    FileContent& file = *p_Reader.File;
    Lock lock(Guard);
    if (!IsServed(p_Reader) && !IsOver(p_Reader)) {
        Changed.wait_for(lock, p_Reader.Starves ? c_Wait : c_FirstWait,
                         [&] { return IsServed(p_Reader) || IsOver(p_Reader); });
        // Not given yet: the client may have gone while this waited, and given bytes are forgotten.
        if (IsServed(p_Reader) && !IsOver(p_Reader))
            return Given::Nothing;
    }
    if (IsOver(p_Reader))
        return Given::Failure;
    if (!IsServed(p_Reader)) {
        if (!p_Reader.Starves && MayRead(p_Reader)) {
            p_Reader.Starves = true;
            Loop.Wake();
        }
        return Given::Nothing;
    }
    p_Reader.Starves = false;
    if (file.EndsAt(p_Reader.At)) {
        Deliver(file);
        return Given::End;
    }
    p_Bytes = *file.At(p_Reader.At);
    p_Reader.At += p_Bytes.Count;
    // Its client may reject it before the door is asked for more.
    file.IsDelivered = file.IsDelivered || file.EndsAt(p_Reader.At);
    Release(file);
    return Given::Bytes;
}

/// Forgets what every client of a file has got.
void Exchange::Release(FileContent& p_File)
{
    std::uint64_t least = Span::c_Open;
    for (Reader const* const reader : Readers)
        if (reader->File.get() == &p_File)
            least = std::min(least, reader->At);
    for (Span& span : p_File.Spans)
        span.Release(least);
    p_File.Tidy();
    Recount(p_File);
    if (IsRoomBlocked || WantsRoom)
        Loop.Wake();
}

void Exchange::Deliver(FileContent& p_File)
{
    p_File.IsDelivered = true;
    Drop(p_File);
    if (p_File.PlanIndex != FileContent::c_Unplanned)
        PlanNext = std::max(PlanNext, p_File.PlanIndex + 1);
    PlanAhead = std::max(PlanAhead, PlanNext);
    Loop.Wake();
}

/// The module has found that the bytes of a file are not those that were announced.
void Exchange::Reject(std::string const& p_Path)
{
    Lock const lock(Guard);
    File const file = Known(p_Path);
    if (!file)
        return;
    TimePoint const now = Clock::now();
    if (file->IsDelivered && file->IsReadFromStart && file->Contributors.size() == 1) {
        std::shared_ptr<Server> const server = *file->Contributors.begin();
        ServerBoard::NoteWrongFile(*server, now);
        file->Wrong.insert(server.get());
        // When every server has been wrong, all are asked again.
        auto const allowed = Allowed(*file);
        auto const& servers = Board.All();
        if (std::none_of(servers.begin(), servers.end(),
                         [&](auto const& p_Server) { return allowed(*p_Server); }))
            file->Wrong.clear();
    }
    // With several contributors nobody knows who was wrong: next time one has to bring it all.
    file->HasOneSource = file->IsReadFromStart && !file->Contributors.empty();
    file->OnlyFrom.reset();
    file->Contributors.clear();
    file->IsReadFromStart = file->IsDelivered = false;
    Drop(*file);
    file->Size.reset();
    file->SizeFrom.reset();
    file->HasNoSize = file->IsDisputed = false;
    SizesKnown.reset();
    Changed.notify_all();
    Loop.Wake();
}

} // namespace Varnholt::Gateway
