#include "Publisher/Publication/ContentIntake.hpp"

#include "Publisher/Source/SourceReader.hpp"

#include <memory>

namespace Varnholt::Publisher {

ContentIntake::ContentIntake(ContentStore const& p_Store, ContentStaging* p_Staging,
                             PublicationObserver& p_Observer)
    : Store(p_Store)
    , Staging(p_Staging)
    , Observer(p_Observer)
{
}

/// A file that is being read.
struct ContentIntake::Arrival {
    SourceFile const* File = nullptr;
    bool IsBegun = false;
    QByteArray Whole;                   ///< all of a file that is not larger than a block
    std::unique_ptr<StagedFile> Staged; ///< null as long as it is only read
};

std::vector<QString> ContentIntake::Read(std::vector<SourceFile const*> const& p_Files)
{
    std::vector<Arrival> arrivals(p_Files.size());
    std::vector<SourceReader::Request> requests;
    for (std::size_t i = 0; i < p_Files.size(); ++i) {
        Arrival& arrival = arrivals[i];
        arrival.File = p_Files[i];
        requests.push_back({p_Files[i], [this, &arrival](char const* p_Data, qint64 p_Bytes) {
                                Take(arrival, p_Data, p_Bytes);
                            }});
    }
    std::vector<QString> digests = SourceReader::Read(requests);
    for (std::size_t i = 0; i < arrivals.size(); ++i)
        Finish(arrivals[i], digests[i]);
    return digests;
}

void ContentIntake::Take(Arrival& p_Arrival, char const* p_Data, qint64 p_Bytes)
{
    qint64 const size = p_Arrival.File->Size;
    if (p_Bytes == size)
        p_Arrival.Whole = QByteArray(p_Data, static_cast<int>(p_Bytes));
    else if (!p_Arrival.IsBegun && Staging && !Store.HasSize(size))
        p_Arrival.Staged = std::make_unique<StagedFile>(Staging->NewFile());
    p_Arrival.IsBegun = true;
    if (p_Arrival.Staged)
        p_Arrival.Staged->Write(p_Data, p_Bytes);
    Observer.BytesRead(p_Bytes);
}

void ContentIntake::Finish(Arrival& p_Arrival, QString const& p_Md5)
{
    qint64 const size = p_Arrival.File->Size;
    if (Staging && p_Arrival.Whole.size() == size && !Store.Holds(p_Md5, size)) {
        p_Arrival.Staged = std::make_unique<StagedFile>(Staging->NewFile());
        p_Arrival.Staged->Write(p_Arrival.Whole.constData(), size);
    }
    if (p_Arrival.Staged)
        p_Arrival.Staged->KeepAs(Staging->PathOf(p_Md5));
}

QString ContentIntake::Stage(SourceFile const& p_File)
{
    StagedFile staged(Staging->NewFile());
    QString md5 = SourceReader::Read(p_File, [&](char const* p_Data, qint64 p_Bytes) {
        staged.Write(p_Data, p_Bytes);
        Observer.BytesRead(p_Bytes);
    });
    staged.KeepAs(Staging->PathOf(md5));
    return md5;
}

} // namespace Varnholt::Publisher
