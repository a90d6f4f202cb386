#pragma once

#include <QString>

namespace Varnholt::Publisher {

/// What a build is called.
struct BuildIdentity {
    QString Id;   ///< part of addresses: letters, digits, ".", "_" and "-"
    QString Name; ///< shown to people
    qint32 Number = 0;
};

} // namespace Varnholt::Publisher
