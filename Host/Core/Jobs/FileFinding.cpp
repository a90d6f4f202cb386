#include "Host/Core/Jobs/FileFinding.hpp"

namespace Varnholt::Host {

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
