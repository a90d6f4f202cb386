#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Publisher {

/// Answers which file of a folder a request names.
class StaticTree {
public:
    /// \throws Failure when there is no such folder
    explicit StaticTree(QString const& p_Root);

    /// \param p_Path path of an address, decoded
    /// \return the file's path on this machine; null when there is no such file, or when it lies
    /// outside the folder
    QString FileOf(QByteArray const& p_Path) const;

private:
    QString Root; ///< canonical, ends with "/"
};

} // namespace Varnholt::Publisher
