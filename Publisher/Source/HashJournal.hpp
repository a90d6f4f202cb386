#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QFile>

#include <mutex>
#include <vector>

namespace Varnholt::Publisher {

/// The digests that a run has found so far, written down one by one: they survive its end by a
/// signal, and save the next run the reading.
class HashJournal {
public:
    /// \param p_File where it is kept
    /// \param p_Source the source folder: a journal of another one is replaced
    HashJournal(QString const& p_File, QString const& p_Source);

    /// Fills in the digests that are still missing and that an earlier run had found.
    void FillIn(std::vector<BuildFile>& p_Files) const;

    /// Any thread. Without the room for it the next run reads again.
    void Add(BuildFile const& p_File);

private:
    QByteArray Head;
    QFile File;
    std::mutex Mutex; ///< of the writing
};

} // namespace Varnholt::Publisher
