// Pending lists: names that are written and read again are the same names, whatever they are, and a
// list that something else has left in the folder is read and rewritten without harm.
//
// An input is the list on the disk, the name to strike and the name to add, each after a line "%%".

#include "GameModules/PendingList.hpp"
#include "Tests/Fuzzing/FuzzSupport.hpp"

namespace {

using namespace Varnholt;
using Fuzzing::Demand;
namespace PendingList = Launcher::PendingList;

bool Always()
{
    return true;
}

void WriteAndReadAgain(Fuzzing::ScratchFile const& p_File, QStringList const& p_Names)
{
    Demand(PendingList::Write(p_File.Path(), p_Names), "a list can be written");
    PendingList::Content const again = PendingList::Read(p_File.Path(), Always);
    Demand(again.Opened && again.Complete, "a list that was written can be read");
    Demand(again.Paths == p_Names, "names are the same when they are read again");
}

void StrikeAndAdd(Fuzzing::ScratchFile const& p_File, QStringList p_Names, QString const& p_Struck,
                  QString const& p_Added)
{
    PendingList::Update(p_File.Path(), p_Struck, p_Added, Always);
    p_Names.removeAll(p_Struck);
    if (!p_Added.isEmpty())
        p_Names += p_Added;
    Demand(PendingList::Read(p_File.Path(), Always).Paths == p_Names,
           "an update strikes and adds, and leaves the others as they are");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* p_Data, std::size_t p_Size)
{
    static int const prepared = Fuzzing::Prepare();
    static Fuzzing::ScratchFile const file;
    auto const parts = Fuzzing::Parts(Fuzzing::Input(p_Data, p_Size), 3);

    file.Put(parts[0]);
    PendingList::Content const found = PendingList::Read(file.Path(), Always);
    Demand(found.Opened && found.Complete, "any file can be read as a list");
    WriteAndReadAgain(file, found.Paths);
    QByteArray const written = file.Bytes();
    Demand(written.count('\n') == found.Paths.size(), "each name has its line");

    // One name is one line.
    auto const name = [](QByteArray p_Bytes) {
        p_Bytes.replace('\n', '/');
        return QString::fromUtf8(p_Bytes.constData(), p_Bytes.size());
    };
    StrikeAndAdd(file, found.Paths, name(parts[1]), name(parts[2]));
    return prepared;
}
