#pragma once

#include "Publisher/Source/SourceFile.hpp"

#include <QString>

#include <functional>
#include <vector>

namespace Varnholt::Publisher {

/// Lists the files of a source folder. Symbolic links are followed as long as they stay inside it.
class SourceScan {
public:
    /// Answers whether a file, named by its relative path, is to be published. What is not wanted
    /// is not looked at any further, so that anything that is refused can be excluded.
    using Wanted = std::function<bool(QString const& p_Path)>;

    SourceScan(QString const& p_Folder, Wanted p_Wanted);

    /// \return the wanted files, ordered by the UTF-8 bytes of their paths; never empty
    /// \throws Failure for a folder or a file that cannot be published
    std::vector<SourceFile> Run();

private:
    void ScanFolder(std::filesystem::path const& p_Folder, std::string const& p_Prefix);
    void ScanEntry(std::filesystem::directory_entry const& p_Entry, std::string const& p_Path);
    void CheckLink(std::filesystem::path const& p_Link, QString const& p_Path) const;

    std::filesystem::path Root;
    Wanted IsWanted;
    std::vector<std::filesystem::path> OpenFolders; ///< canonical, from the root to the current
    std::vector<SourceFile> Files;
};

} // namespace Varnholt::Publisher
