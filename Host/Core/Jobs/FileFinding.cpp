#include "Host/Core/Jobs/FileFinding.hpp"

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

} // namespace Varnholt::Host
