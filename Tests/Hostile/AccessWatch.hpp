#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// Sees every access to the folders and files below a folder, reading too, from when it is made.
/// Where the system offers no such thing it sees nothing.
class AccessWatch {
public:
    explicit AccessWatch(QString const& p_Folder);
    ~AccessWatch();
    AccessWatch(AccessWatch const&) = delete;
    AccessWatch& operator=(AccessWatch const&) = delete;

    static bool IsAble();
    /// What was done since it was asked last, such as "opened Data/a". Asking is none.
    QStringList Take();

private:
    int Queue = -1;
    QHash<int, QString> Folders; ///< by the number of their watch
};

} // namespace Varnholt::TestSupport
