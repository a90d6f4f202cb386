#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Tree/ContentStaging.hpp"
#include "Publisher/Tree/ContentStore.hpp"

namespace Varnholt::Publisher {

/// Reads source files for their digests and stages, in the same pass, what the tree does not hold.
///
/// A file is new when no content has its size; it is copied while it is read. Of the others small
/// ones are kept in memory until their digest tells whether they are new. Large ones are only read:
/// most of them are there already.
class ContentIntake {
public:
    /// All arguments must outlive the object. \param p_Staging null: nothing is staged
    ContentIntake(ContentStore const& p_Store, ContentStaging* p_Staging,
                  PublicationObserver& p_Observer);

    /// Any thread. \param p_Files as many as `SourceReader` takes
    /// \return the digests \throws Failure
    std::vector<QString> Read(std::vector<SourceFile const*> const& p_Files);

    /// Stages content that was only read, or not even that. Any thread.
    /// \return the digest of what was staged \throws Failure
    QString Stage(SourceFile const& p_File);

private:
    struct Arrival;

    void Take(Arrival& p_Arrival, char const* p_Data, qint64 p_Bytes);
    void Finish(Arrival& p_Arrival, QString const& p_Md5);

    ContentStore const& Store;
    ContentStaging* Staging;
    PublicationObserver& Observer;
};

} // namespace Varnholt::Publisher
