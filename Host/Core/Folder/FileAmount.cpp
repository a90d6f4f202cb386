#include "Host/Core/Folder/FileAmount.hpp"

#include "Host/Core/Failures/ByteText.hpp"

#include <QCoreApplication>

#include <algorithm>

namespace Varnholt::Host {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::FileAmount)
};

} // namespace

void FileAmount::Add(qint64 p_Bytes)
{
    ++Files;
    Bytes += static_cast<quint64>(std::max<qint64>(0, p_Bytes));
    IsLeast = IsLeast || p_Bytes < 0;
}

QString FileCountText(std::size_t p_Count)
{
    return p_Count == 1 ? Texts::tr("1 file") : Texts::tr("%1 files").arg(p_Count);
}

QString AmountText(FileAmount const& p_Amount)
{
    return (p_Amount.IsLeast ? Texts::tr("%1 (at least %2)") : Texts::tr("%1 (%2)"))
        .arg(FileCountText(p_Amount.Files), ByteText(p_Amount.Bytes));
}

} // namespace Varnholt::Host
