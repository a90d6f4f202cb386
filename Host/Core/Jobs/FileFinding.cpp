#include "Host/Core/Jobs/FileFinding.hpp"

#include "Host/Core/Failures/ByteText.hpp"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Host {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::FileFinding)
};

} // namespace

FileFinding::FileFinding(QString const& p_Folder,
                         Launcher::ApplicationManifestFileEntry const& p_Entry, Cause p_WhenThere)
    : Path(p_Entry.Path)
    , Location(p_Entry.Location)
    , IsDefaultServerOnly(p_Entry.Has(Launcher::ApplicationManifestFileEntry::DefaultServerOnly))
    , Why(p_WhenThere)
{
    QFileInfo const file(p_Folder + Path);
    if (!file.exists())
        Why = Cause::Missing;
    else if (file.isDir())
        Why = Cause::Blocked;
}

QString FileFinding::CauseText() const
{
    switch (Why) {
    case Cause::Missing:
        return QStringLiteral("missing");
    case Cause::Different:
        return QStringLiteral("different");
    case Cause::Blocked:
        return QStringLiteral("blocked");
    case Cause::Pending:
        return QStringLiteral("pending");
    }
    return {};
}

QString FileCountText(std::size_t p_Count)
{
    return p_Count == 1 ? Texts::tr("1 file") : Texts::tr("%1 files").arg(p_Count);
}

FetchAmount::FetchAmount(std::vector<FileFinding> const& p_Findings)
    : Files(p_Findings.size())
{
    for (FileFinding const& finding : p_Findings) {
        Bytes += static_cast<quint64>(std::max<qint64>(0, finding.Bytes));
        IsWhole = IsWhole && finding.Bytes >= 0;
    }
}

QString FetchAmount::Text() const
{
    return (IsWhole ? Texts::tr("%1 (%2)") : Texts::tr("%1 (at least %2)"))
        .arg(FileCountText(Files), ByteText(Bytes));
}

} // namespace Varnholt::Host
