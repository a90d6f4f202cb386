#pragma once

#include <QString>

namespace Varnholt::Host {

/// A count of bytes for people, "1.5 GiB".
QString ByteText(quint64 p_Bytes);

} // namespace Varnholt::Host
