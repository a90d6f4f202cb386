#include "Host/Core/Failures/ByteText.hpp"

#include <QLocale>

namespace Varnholt::Host {

QString ByteText(quint64 p_Bytes)
{
    return QLocale::c().formattedDataSize(static_cast<qint64>(p_Bytes), p_Bytes < 1024 ? 0 : 1,
                                          QLocale::DataSizeIecFormat);
}

} // namespace Varnholt::Host
