#include "Host/Core/MissingFiles.hpp"

#include "GameModules/LinkGuard.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

std::vector<Launcher::ApplicationManifestFileEntry>
MissingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale)
{
    Launcher::LinkGuard links(p_Folder);
    std::vector<Launcher::ApplicationManifestFileEntry> missing;
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            bool const wanted = entry.Locale.isEmpty() || entry.Locale == p_Locale;
            if (wanted && !QFileInfo(p_Folder + entry.Path).isFile() &&
                !links.LeadingOut(entry.Path))
                missing.push_back(entry);
        }
    return missing;
}

std::optional<Launcher::LinkGuard::Link>
LinkLeadingOut(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
               QString const& p_Locale)
{
    Launcher::LinkGuard links(p_Folder);
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            if (entry.Locale.isEmpty() || entry.Locale == p_Locale)
                if (auto link = links.LeadingOut(entry.Path))
                    return link;
    return std::nullopt;
}

} // namespace Varnholt::Host
