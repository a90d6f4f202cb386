#pragma once

#include <QDir>
#include <QString>

#include <climits>

namespace Varnholt::TestSupport {

/// What this process holds of the system: threads, and open files and sockets. Works on Linux only.
struct ProcessUsage {
#ifdef Q_OS_LINUX
    static constexpr bool c_Works = true;

    static ProcessUsage Now()
    {
        return {Entries(QStringLiteral("/proc/self/task")),
                Entries(QStringLiteral("/proc/self/fd"))};
    }
#else
    static constexpr bool c_Works = false;

    static ProcessUsage Now()
    {
        return {};
    }
#endif

    static ProcessUsage Any()
    {
        return {INT_MAX, INT_MAX};
    }

    int Threads = 0;
    int Descriptors = 0;

    bool IsWithin(ProcessUsage const& p_Other) const
    {
        return Threads <= p_Other.Threads && Descriptors <= p_Other.Descriptors;
    }
    QString Text() const
    {
        return QStringLiteral("%1 threads, %2 descriptors").arg(Threads).arg(Descriptors);
    }

private:
    static int Entries(QString const& p_Folder)
    {
        QDir::Filters const all = QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot;
        return QDir(p_Folder).entryList(all).size();
    }
};

} // namespace Varnholt::TestSupport
