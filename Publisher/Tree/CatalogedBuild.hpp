#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace Varnholt::Publisher {

/// A build of a published tree and what the tree holds of it.
struct CatalogedBuild {
    QString Id;
    QString Name;
    qint32 Number = 0;
    int Files = 0;
    int StreamedFiles = 0;
    qint64 Bytes = 0;      ///< of its files, as far as their content is there
    QSet<QString> Content; ///< locations of its content files
    QStringList Missing;   ///< those that are not there
};

} // namespace Varnholt::Publisher
