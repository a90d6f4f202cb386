#include "Publisher/Publication/ContentIntake.hpp"

#include "Publisher/Source/SourceReader.hpp"

#include <QCryptographicHash>

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
            if (p_Bytes < p_File.Size && IsNewSize(p_File, start))
                staged = std::make_unique<StagedFile>(Staging->NewFile());
        }
        if (staged)
            staged->Write(p_Data, p_Bytes);
        Observer.BytesRead(p_Bytes);
    });
    if (Staging && !staged && start.size() == p_File.Size && !Store.Holds(md5, p_File.Size) &&
        Claim(md5.toLatin1())) {
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

/// Two new files of one size that begin alike may be the same: the second one is only read.
bool ContentIntake::IsNewSize(SourceFile const& p_File, QByteArray const& p_Start)
{
    return Staging && !Store.HasSize(p_File.Size) &&
           Claim(QByteArray::number(p_File.Size) + ' ' +
                 QCryptographicHash::hash(p_Start, QCryptographicHash::Md5));
}

bool ContentIntake::Claim(QByteArray const& p_Content)
{
    std::lock_guard const lock(Mutex);
    if (Claimed.contains(p_Content))
        return false;
    Claimed.insert(p_Content);
    return true;
}

} // namespace Varnholt::Publisher
