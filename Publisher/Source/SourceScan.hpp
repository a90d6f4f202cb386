#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QString>

#include <functional>
#include <vector>

namespace Varnholt::Publisher {

/// Lists the files of a source folder. Symbolic links are followed as long as they stay inside it.
class SourceScan {
public:
    /// How a file, named by its relative path, is published; asked once for each. What is excluded
    /// is not looked at any further, so that anything that is refused can be excluded.
    using Treat = std::function<FileTreatment(QString const& p_Path)>;

    SourceScan(QString const& p_Folder, Treat p_Treat);

    /// \return the published files, ordered by the UTF-8 bytes of their paths; never empty
    /// \throws Failure for a folder or a file that cannot be published
    std::vector<BuildFile> Run();

private:
    void ScanFolder(std::filesystem::path const& p_Folder, std::string const& p_Prefix);
    void ScanEntry(std::filesystem::directory_entry const& p_Entry, std::string const& p_Path);
    void CheckLink(std::filesystem::path const& p_Link, QString const& p_Path) const;

    std::filesystem::path Root;
    Treat TreatmentOf;
    std::vector<std::filesystem::path> OpenFolders; ///< canonical, from the root to the current
    std::vector<BuildFile> Files;
};

} // namespace Varnholt::Publisher
