#pragma once

#include "Publisher/Failure.hpp"

#include <QFile>

namespace Varnholt::Publisher {

/// The content of a file. \throws Failure when it cannot be read
inline QByteArray ReadFile(QString const& p_Path)
{
    QFile file(p_Path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(p_Path + QStringLiteral(": cannot be read: ") + file.errorString());
    return file.readAll();
}

} // namespace Varnholt::Publisher
