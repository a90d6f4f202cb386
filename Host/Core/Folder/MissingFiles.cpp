#include "Host/Core/Folder/MissingFiles.hpp"

#include "GameModules/FileLink.hpp"
#include "Host/Core/Folder/FolderCheck.hpp"

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
            if (wanted && !Launcher::FileLink::IsFile(p_Folder + entry.Path) &&
                !links.OnTheWay(entry.Path))
                missing.push_back(entry);
        }
    return missing;
}

bool HoldsGame(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
               QString const& p_Locale)
{
    std::size_t wanted = 0;
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            wanted += entry.Locale.isEmpty() || entry.Locale == p_Locale ? 1 : 0;
    return FolderCheck::HoldsGame(p_Folder) ||
           (wanted > 0 && 2 * MissingFiles(p_Manifest, p_Folder, p_Locale).size() <= wanted);
}

std::optional<Launcher::LinkGuard::Link>
LinkOnTheWay(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale)
{
    Launcher::LinkGuard links(p_Folder);
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            if (entry.Locale.isEmpty() || entry.Locale == p_Locale)
                if (auto link = links.OnTheWay(entry.Path))
                    return link;
    return std::nullopt;
}

} // namespace Varnholt::Host
