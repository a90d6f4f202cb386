#include "Host/Core/Jobs/FileFinding.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

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

FileAmount AmountOf(std::vector<FileFinding> const& p_Findings)
{
    FileAmount amount;
    for (FileFinding const& finding : p_Findings)
        amount.Add(finding.Bytes);
    return amount;
}

std::vector<Launcher::ApplicationManifestFileEntry>
EntriesOf(std::vector<FileFinding> const& p_Findings)
{
    std::vector<Launcher::ApplicationManifestFileEntry> entries(p_Findings.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        entries[i].Path = p_Findings[i].Path;
        entries[i].Location = p_Findings[i].Location;
    }
    return entries;
}

} // namespace Varnholt::Host
