#include "Host/Core/MissingFiles.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

std::vector<Launcher::ApplicationManifestFileEntry>
MissingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale)
{
    std::vector<Launcher::ApplicationManifestFileEntry> missing;
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries) {
            bool const wanted = entry.Locale.isEmpty() || entry.Locale == p_Locale;
            if (wanted && !QFileInfo(p_Folder + entry.Path).isFile())
                missing.push_back(entry);
        }
    return missing;
}

} // namespace Varnholt::Host
