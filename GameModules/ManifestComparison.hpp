#pragma once

#include "GameModules/DigestEngine.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace Varnholt::Launcher {

/// Finds out which entries of a manifest list must be fetched into a folder. Reads files, writes
/// none. Works on whatever thread calls it, and calls back there.
class ManifestComparison {
public:
    using Entries = std::vector<ApplicationManifestFileEntry>;

    QString Folder;                  ///< ends in "/"
    QString Locale;                  ///< entries of other languages are passed over
    bool SkipFirstBuildOnly = false; ///< pass over entries that a first build has verified
    std::function<bool()> Continue;  ///< false: stop early with what was found
    /// Whether a link keeps the path out of reach: such an entry is left out.
    std::function<bool(QString const&)> IsBarred;
    std::function<void(std::size_t)>
        OnEntry; ///< told the index of each entry before it is examined

    struct Findings {
        Entries Files;
        bool IsWhole = true; ///< false: stopped early, or links kept some out of reach
    };

    /// The entries whose file is missing, unreadable, of another digest, or a link that gives way
    /// to the file, in manifest order. Files are read ahead, by threads that end with this.
    Findings Examine(Entries const& p_Manifest) const;

    /// The entries that a pending list names and p_Found does not hold yet, in the list's order. A
    /// named file is fetched again even when its copy is good, unless presence is enough for it.
    Entries LeftOver(Entries const& p_Manifest, QStringList const& p_Paths,
                     Entries const& p_Found) const;

    /// The first entry of each path of a pending list, in the list's order.
    Entries Named(Entries const& p_Manifest, QStringList const& p_Paths) const;

private:
    struct Look;
    Look LookAt(ApplicationManifestFileEntry const& p_Entry, DigestEngine& p_Digests) const;
    bool IsThere(ApplicationManifestFileEntry const& p_Entry) const;
    bool IsKept(ApplicationManifestFileEntry const& p_Entry) const;
};

} // namespace Varnholt::Launcher
