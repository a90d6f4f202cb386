#pragma once

#include <QString>
#include <QStringList>

#ifdef Q_OS_LINUX
#include <sys/inotify.h>
#include <unistd.h>
#endif

namespace Varnholt::TestSupport {

/// Tells which names were removed from a folder, in order. Works on Linux only.
class RemovalWatch {
public:
#ifdef Q_OS_LINUX
    static constexpr bool c_Works = true;

    explicit RemovalWatch(QString const& p_Folder)
        : Descriptor(inotify_init1(IN_NONBLOCK))
    {
        inotify_add_watch(Descriptor, p_Folder.toUtf8().constData(), IN_DELETE);
    }
    ~RemovalWatch()
    {
        close(Descriptor);
    }

    /// Names removed since the last call.
    QStringList Removed()
    {
        alignas(inotify_event) char events[16384];
        ssize_t const size = read(Descriptor, events, sizeof(events));
        QStringList names;
        for (ssize_t at = 0; at < size;) {
            auto const* const event =
                static_cast<inotify_event const*>(static_cast<void const*>(events + at));
            names += QString::fromUtf8(event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return names;
    }

private:
    int Descriptor;
#else
    static constexpr bool c_Works = false;

    explicit RemovalWatch(QString const&) {}
    QStringList Removed()
    {
        return {};
    }
#endif

public:
    RemovalWatch(RemovalWatch const&) = delete;
    RemovalWatch& operator=(RemovalWatch const&) = delete;
};

} // namespace Varnholt::TestSupport
