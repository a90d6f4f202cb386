#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Publisher {

/// Tells a published tree from a folder that belongs to somebody else. The mark is a file of the
/// tree; whatever the publisher keeps for itself there has a name that starts alike.
class TreeMark {
public:
    /// \param p_Root the tree's folder
    explicit TreeMark(QString const& p_Root);

    QString Path() const;
    static QByteArray Text();
    bool IsThere() const;

    /// Refuses a folder that holds something and has no mark: nothing in it may be replaced.
    /// \throws Failure that names the folder
    void CheckMayPublish() const;

    /// Refuses everything but a tree.
    /// \throws Failure that names the folder
    void CheckIsTree() const;

    /// Whether a file of that name is the publisher's own affair and none of the clients'.
    static bool IsPrivate(QString const& p_Name);

    /// Where something of that name is kept in the tree, out of the clients' sight.
    QString PrivatePath(QString const& p_Name) const;

private:
    QString Root;
};

} // namespace Varnholt::Publisher
