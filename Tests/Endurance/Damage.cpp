#include "Tests/Endurance/Damage.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Varnholt::TestSupport {

using Entry = Launcher::ApplicationManifestFileEntry;

QString Damage::Do()
{
    SampleFile const& file = Random.From(Content.Files);
    QString const part = file.Path + QStringLiteral(".part");
    int const size = file.Bytes.size();
    switch (Random.Below(7)) {
    case 0:
        // Nobody would heal what need only be present, and garbage must not be started.
        if ((file.Flags & (Entry::KeepIfPresent | Entry::Executable)) == 0)
            return Overwrite(file.Path, size);
        [[fallthrough]];
    case 1:
    case 2:
        QFile::remove(Folder + file.Path);
        return file.Path + QStringLiteral(" removed");
    case 3:
        return Overwrite(part, Random.Below(size + 100));
    case 4:
        QFile::resize(Folder + part, QFileInfo(Folder + part).size() / 2);
        return part + QStringLiteral(" cut");
    case 5:
        return SpoilList();
    default:
        return PutFolder(Random.OneIn(2) ? part : file.Path);
    }
}

void Damage::RemoveMost()
{
    bool const streamedOnly = Random.OneIn(3);
    for (SampleFile const& file : Content.Files)
        if (!Random.OneIn(3) && (file.Streamed || !streamedOnly))
            QFile::remove(Folder + file.Path);
}

QString Damage::Overwrite(QString const& p_Name, int p_Size)
{
    bool const done = WriteFile(Folder + p_Name, SampleContent::Bytes(p_Size, 99));
    return p_Name + (done ? QStringLiteral(" overwritten") : QStringLiteral(" not overwritten"));
}

QString Damage::PutFolder(QString const& p_Name)
{
    QFile::remove(Folder + p_Name);
    QDir().mkpath(Folder + p_Name + QStringLiteral("/folder"));
    return p_Name + QStringLiteral(" is a folder");
}

QString Damage::SpoilList()
{
    QByteArray const lines = "no such file\n\n../outside\n" +
                             Random.From(Content.Files).Path.toUtf8() + "\n" +
                             Random.From(Content.Files).Path.toUtf8();
    QString const name =
        Random.OneIn(2) ? QStringLiteral("ToDownloadBase.db") : QStringLiteral("ToDownload.db");
    bool const done = WriteFile(Folder + name, lines);
    return name + (done ? QStringLiteral(" spoilt") : QStringLiteral(" not spoilt"));
}

void Damage::ClearTheWay() const
{
    for (SampleFile const& file : Content.Files)
        for (QString const& name : {file.Path, file.Path + QStringLiteral(".part")})
            if (QFileInfo(Folder + name).isDir())
                QDir(Folder + name).removeRecursively();
}

} // namespace Varnholt::TestSupport
