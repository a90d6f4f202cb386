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

QString ContentIntake::Read(SourceFile const& p_File)
{
    QByteArray start("");
    std::unique_ptr<StagedFile> staged;
    QString md5 = SourceReader::Read(p_File, [&](char const* p_Data, qint64 p_Bytes) {
        if (start.isEmpty()) {
            start = QByteArray(p_Data, static_cast<int>(p_Bytes));
            if (Staging && p_Bytes < p_File.Size && !Store.HasSize(p_File.Size))
                staged = std::make_unique<StagedFile>(Staging->NewFile());
        }
        if (staged)
            staged->Write(p_Data, p_Bytes);
        Observer.BytesRead(p_Bytes);
    });
    if (Staging && start.size() == p_File.Size && !Store.Holds(md5, p_File.Size)) {
        staged = std::make_unique<StagedFile>(Staging->NewFile());
        staged->Write(start.constData(), start.size());
    }
    if (staged)
        staged->KeepAs(Staging->PathOf(md5));
    return md5;
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
