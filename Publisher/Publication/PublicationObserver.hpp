#pragma once

#include <QString>

namespace Varnholt::Publisher {

/// Follows a publication while it runs.
class PublicationObserver {
public:
    virtual ~PublicationObserver() = default;

    /// \param p_Name what is being done, for people
    /// \param p_Bytes how much is to be read
    virtual void PhaseStarted(QString const& p_Name, qint64 p_Bytes) = 0;

    /// That much more was read. Any thread, several at once; may throw to stop the publication.
    virtual void BytesRead(qint64 p_Bytes) = 0;

    /// The build is published, but probably not what is wanted.
    virtual void Warned(QString const& p_Sentence) = 0;
};

} // namespace Varnholt::Publisher
