#pragma once

#include "Publisher/Tree/BuildCatalog.hpp"

#include <optional>
#include <vector>

namespace Varnholt::Publisher {

/// What became of one file between two builds. A file is altered when its content is the same and
/// its flags, language or streaming are not.
struct FileDifference {
    enum class Change { New, Changed, Altered, Removed, Same };

    Change Kind = Change::Same;
    PublishedFile File; ///< of the newer build unless it is removed
    /// Of the older build, when its flags, language or streaming are others than the file's.
    std::optional<PublishedFile> TreatedBefore;
    qint64 Bytes = 0;
    bool IsFetched = false; ///< by a client that updates from the older build
};

/// A number of files and their size.
struct FileTotal {
    int Files = 0;
    qint64 Bytes = 0;

    void Add(qint64 p_Bytes)
    {
        ++Files;
        Bytes += p_Bytes;
    }
};

/// What differs between two builds of a tree.
class BuildDifference {
public:
    /// \param p_Old nullptr for a client that has nothing yet
    /// \param p_Locale the client's language; empty for files of all languages
    /// \throws Failure
    BuildDifference(BuildCatalog const& p_Tree, PublishedBuild const* p_Old,
                    PublishedBuild const& p_New, QString const& p_Locale);

    /// By path.
    std::vector<FileDifference> const& Files() const { return Found; }
    FileTotal Total(FileDifference::Change p_Kind) const;
    /// Of what a client fetches.
    FileTotal Fetched(bool p_Streamed) const;

private:
    std::vector<FileDifference> Found;
};

} // namespace Varnholt::Publisher
