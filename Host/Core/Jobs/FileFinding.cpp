#include "Host/Core/Jobs/FileFinding.hpp"

#include "Host/Core/Failures/ByteText.hpp"

#include <algorithm>

namespace Varnholt::Host {

QString FileFinding::CauseText() const
{
    switch (Why) {
    case Cause::Missing:
        return QStringLiteral("missing");
    case Cause::Different:
        return QStringLiteral("different");
    case Cause::Blocked:
        return QStringLiteral("blocked");
    case Cause::Pending:
        return QStringLiteral("pending");
    }
    return {};
}

QString FileCountText(std::size_t p_Count)
{
    return p_Count == 1 ? QStringLiteral("1 file") : QStringLiteral("%1 files").arg(p_Count);
}

QString AmountText(std::vector<FileFinding> const& p_Findings)
{
    quint64 bytes = 0;
    bool known = true;
    for (FileFinding const& finding : p_Findings) {
        bytes += static_cast<quint64>(std::max<qint64>(0, finding.Bytes));
        known = known && finding.Bytes >= 0;
    }
    return QStringLiteral("%1 (%2%3)")
        .arg(FileCountText(p_Findings.size()), known ? QString() : QStringLiteral("at least "),
             ByteText(bytes));
}

} // namespace Varnholt::Host
