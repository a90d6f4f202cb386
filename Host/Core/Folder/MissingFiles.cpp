#include "Host/Core/Folder/MissingFiles.hpp"

#include "GameModules/FileLink.hpp"
#include "Host/Core/Folder/FolderCheck.hpp"

namespace Varnholt::Host {

namespace {

/// Visits the files, base and streamed, that an installation in the language has.
template <typename Visit>
void EachWanted(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Locale,
                Visit p_Visit)
{
    for (auto const* const entries : {&p_Manifest.Files, &p_Manifest.StreamedFiles})
        for (Launcher::ApplicationManifestFileEntry const& entry : *entries)
            if (entry.IsFor(p_Locale))
                p_Visit(entry);
}

} // namespace

std::vector<Launcher::ApplicationManifestFileEntry>
MissingFiles(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale)
{
    Launcher::LinkGuard links(p_Folder);
    std::vector<Launcher::ApplicationManifestFileEntry> missing;
    EachWanted(p_Manifest, p_Locale, [&](auto const& p_Entry) {
        if (!Launcher::FileLink::IsFile(p_Folder + p_Entry.Path) && !links.OnTheWay(p_Entry.Path))
            missing.push_back(p_Entry);
    });
    return missing;
}

bool HoldsGame(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
               QString const& p_Locale)
{
    std::size_t wanted = 0;
    EachWanted(p_Manifest, p_Locale, [&](auto const&) { ++wanted; });
    return FolderCheck::HasPendingLists(p_Folder) ||
           (wanted > 0 && 2 * MissingFiles(p_Manifest, p_Folder, p_Locale).size() <= wanted);
}

std::optional<Launcher::LinkGuard::Link>
LinkOnTheWay(Launcher::ApplicationManifest const& p_Manifest, QString const& p_Folder,
             QString const& p_Locale)
{
    Launcher::LinkGuard links(p_Folder);
    std::optional<Launcher::LinkGuard::Link> link;
    EachWanted(p_Manifest, p_Locale, [&](auto const& p_Entry) {
        if (!link)
            link = links.OnTheWay(p_Entry.Path);
    });
    return link;
}

} // namespace Varnholt::Host
