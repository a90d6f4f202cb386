#include "Host/Core/Folder/FileAmount.hpp"

#include "Host/Core/Failures/ByteText.hpp"

#include <algorithm>

namespace Varnholt::Host {

void FileAmount::Add(qint64 p_Bytes)
{
    ++Files;
    Bytes += static_cast<quint64>(std::max<qint64>(0, p_Bytes));
    IsLeast = IsLeast || p_Bytes < 0;
}

QString FileCountText(std::size_t p_Count)
{
    return p_Count == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(p_Count);
}

QString AmountText(FileAmount const& p_Amount)
{
    return QStringLiteral("%1 (%2%3)")
        .arg(FileCountText(p_Amount.Files),
             p_Amount.IsLeast ? QStringLiteral("at least ") : QString(), ByteText(p_Amount.Bytes));
}

} // namespace Varnholt::Host
