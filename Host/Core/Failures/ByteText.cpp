#include "Host/Core/Failures/ByteText.hpp"

#include <QCoreApplication>
#include <QLocale>

namespace Varnholt::Host {

QString ByteText(quint64 p_Bytes)
{
    //: The language whose way to write numbers and units is used, such as "fr" or "it"
    QLocale const locale(QCoreApplication::translate("Varnholt::Host::ByteText", "C"));
    return locale.formattedDataSize(static_cast<qint64>(p_Bytes), p_Bytes < 1024 ? 0 : 1,
                                    QLocale::DataSizeIecFormat);
}

} // namespace Varnholt::Host
