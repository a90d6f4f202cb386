#include "Launcher/Application/RemoteText.hpp"

namespace Varnholt::Launcher {

QString RemoteText(QByteArray const& p_Data)
{
    return QString::fromUtf8(
        p_Data.constData(),
        static_cast<int>(qstrnlen(p_Data.constData(), static_cast<uint>(p_Data.size()))));
}

} // namespace Varnholt::Launcher
