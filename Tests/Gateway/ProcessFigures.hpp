#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace Varnholt::TestSupport::ProcessFigures {

/// A number of /proc/self/status.
inline qint64 Status(QByteArray const& p_Name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (file.open(QIODevice::ReadOnly))
        for (QByteArray const& line : file.readAll().split('\n'))
            if (line.startsWith(p_Name + ':'))
                return line.mid(p_Name.size() + 1).simplified().split(' ').first().toLongLong();
    return -1;
}

inline qint64 Threads()
{
    return Status("Threads");
}

inline int Descriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

/// By how much the memory of this process has been larger than at the making, at most. A
/// sanitizer's own is not told apart: there is nothing to be seen then.
class MemoryPeak {
public:
#ifdef VARNHOLT_SANITIZED
    static constexpr bool c_IsSanitized = true;
#else
    static constexpr bool c_IsSanitized = false;
#endif
    MemoryPeak()
    {
        QFile file(QStringLiteral("/proc/self/clear_refs"));
        if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1 || !file.flush())
            qFatal("the peak of memory cannot be reset");
    }
    qint64 Bytes() const
    {
        return c_IsSanitized ? 0 : (Status("VmHWM") - Before) * 1024;
    }

private:
    qint64 const Before = Status("VmRSS");
};

} // namespace Varnholt::TestSupport::ProcessFigures
