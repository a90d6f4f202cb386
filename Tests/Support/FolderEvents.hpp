#pragma once

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

#ifdef Q_OS_LINUX
#include <sys/inotify.h>
#include <unistd.h>
#endif

namespace Varnholt::TestSupport {

/// Tells what happens to the files of a folder. Works on Linux only.
class FolderEvents {
public:
#ifdef Q_OS_LINUX
    static constexpr bool c_Works = true;

    explicit FolderEvents(QString const& p_Folder)
        : Descriptor(inotify_init1(IN_NONBLOCK))
    {
        inotify_add_watch(Descriptor, p_Folder.toUtf8().constData(),
                          IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_MOVED_TO | IN_DELETE);
    }
    ~FolderEvents()
    {
        close(Descriptor);
    }

    /// What has happened to a file since the last call: "changed" in place, "permissions" changed,
    /// "new" file under the name, "removed".
    QStringList Of(QString const& p_Name)
    {
        QStringList happened;
        for (auto const& [name, what] : Take())
            if (name == p_Name)
                happened += what;
        return happened;
    }
    /// Names removed since the last call, in order.
    QStringList Removed()
    {
        QStringList names;
        for (auto const& [name, what] : Take())
            if (what == QLatin1String("removed"))
                names += name;
        return names;
    }

private:
    std::vector<std::pair<QString, QString>> Take()
    {
        alignas(inotify_event) char events[16384];
        ssize_t const size = read(Descriptor, events, sizeof(events));
        std::vector<std::pair<QString, QString>> happened;
        for (ssize_t at = 0; at < size;) {
            auto const* const event =
                static_cast<inotify_event const*>(static_cast<void const*>(events + at));
            if (event->len > 0)
                happened.emplace_back(QString::fromUtf8(event->name), NameOf(event->mask));
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return happened;
    }
    static QString NameOf(quint32 p_Mask)
    {
        if ((p_Mask & IN_DELETE) != 0)
            return QStringLiteral("removed");
        if ((p_Mask & IN_ATTRIB) != 0)
            return QStringLiteral("permissions");
        return (p_Mask & IN_MODIFY) != 0 ? QStringLiteral("changed") : QStringLiteral("new");
    }

    int Descriptor;
#else
    static constexpr bool c_Works = false;

    explicit FolderEvents(QString const&) {}
    QStringList Of(QString const&)
    {
        return {};
    }
    QStringList Removed()
    {
        return {};
    }
#endif

public:
    FolderEvents(FolderEvents const&) = delete;
    FolderEvents& operator=(FolderEvents const&) = delete;
};

} // namespace Varnholt::TestSupport
