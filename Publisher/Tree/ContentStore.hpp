#pragma once

#include "Publisher/Tree/BuildFile.hpp"

#include <QString>

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

    /// Whether the content of a file is there already.
    /// \throws Failure when something else stands in its place
    bool Holds(BuildFile const& p_File) const;

private:
    QString Folder;
};

} // namespace Varnholt::Publisher
