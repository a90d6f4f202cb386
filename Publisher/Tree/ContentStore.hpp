#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QSet>
#include <QString>

#include <mutex>

namespace Varnholt::Publisher {

/// The content files of an application. Each is named by the digest of its content, so it never
/// changes, builds share what they have in common, and names need no escaping in addresses.
class ContentStore {
public:
    /// \param p_Folder the application's folder in the published tree
    explicit ContentStore(QString const& p_Folder);

    /// Where content lies, relative to the application's folder; plain ASCII.
    static QString LocationOf(QString const& p_Md5);

    /// Where content lies on this machine.
    QString PathOf(QString const& p_Md5) const;

    /// Whether the content of a file is there already, whole as far as its size tells.
    /// \throws Failure when something else stands in its place
    bool Holds(QString const& p_Md5, qint64 p_Size) const;

    /// Whether there is content of that size at all. Any thread.
    bool HasSize(qint64 p_Size) const;

    /// From now on a content file is not held, for its bytes are not what they must be.
    void Distrust(QString const& p_Md5) { Damaged.insert(p_Md5); }

private:
    QString Folder;
    QSet<QString> Damaged;
    mutable std::once_flag SizesRead;
    mutable QSet<qint64> Sizes;
};

} // namespace Varnholt::Publisher
