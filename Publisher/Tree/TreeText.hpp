#pragma once

#include <QByteArray>
#include <QString>

namespace Varnholt::Publisher {

/// A small file of a tree with the given content.
struct TreeText {
    QString Target;
    QByteArray Content;
};

} // namespace Varnholt::Publisher
