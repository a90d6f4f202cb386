#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QByteArray>
#include <QString>

#include <vector>

namespace Varnholt::Publisher {

/// Remembers the digests of a source folder's files, so that those that have not changed need not
/// be read again. A file is unchanged when its path, size, time and inode are. Is read and written
/// line by line: a large index needs no more memory than a small one.
class HashIndex {
public:
    /// \param p_File where the index is kept
    /// \param p_Source the source folder: an index of another one knows nothing of its files
    HashIndex(QString const& p_File, QString const& p_Source);

    /// Fills in the digests of unchanged files; none without an index of this source.
    /// \param p_Files ordered by the UTF-8 bytes of their paths, none of them hashed
    /// \return false when it is damaged, and nothing was filled in
    bool FillIn(std::vector<BuildFile>& p_Files) const;

    /// Replaces the index by one of hashed files.
    ///
    /// A file that was written just before the scan may be written once more without a visible
    /// change of its time; it is left out.
    /// \param p_Scanned when the scan began, since 1970
    /// \throws Failure
    void Write(std::vector<BuildFile> const& p_Files, std::chrono::nanoseconds p_Scanned) const;

    QString const& FileName() const { return File; }

private:
    QByteArray Head() const;

    QString File;
    QString Source;
};

} // namespace Varnholt::Publisher
