#include "Host/Core/Network/AddressNames.hpp"

#include <QMutexLocker>

namespace Varnholt::Host {

void AddressNames::Set(Rows p_Rows)
{
    QMutexLocker const lock(&RowsMutex);
    Known = std::move(p_Rows);
}

QString AddressNames::Replace(QString const& p_Text) const
{
    Rows rows;
    {
        QMutexLocker const lock(&RowsMutex);
        rows = Known; // shares them
    }
    QString text = p_Text;
    for (auto const& [address, name] : rows)
        text.replace(address, name);
    return text;
}

} // namespace Varnholt::Host
