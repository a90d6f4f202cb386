#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

#include <array>
#include <cstring>
#include <map>

#include <sys/inotify.h>
#include <unistd.h>

namespace Varnholt::TestSupport {

/// Records in their order the changes in folders, as the system reports them.
class MoveWatch {
public:
    /// \param p_Folders relative to p_Root, each empty or with "/" at its end; they must exist
    MoveWatch(QString const& p_Root, QStringList const& p_Folders)
        : Queue(inotify_init1(IN_NONBLOCK))
    {
        for (QString const& folder : p_Folders) {
            int const watch =
                inotify_add_watch(Queue, QFile::encodeName(p_Root + '/' + folder).constData(),
                                  IN_CREATE | IN_MODIFY | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE);
            if (watch < 0)
                qFatal("%s cannot be watched", qPrintable(folder));
            Folders[watch] = folder;
        }
    }
    ~MoveWatch() { close(Queue); }
    MoveWatch(MoveWatch const&) = delete;
    MoveWatch& operator=(MoveWatch const&) = delete;

    /// "moved PATH" for what was put in place by a move, "other PATH" for any other change. Without
    /// what the publisher does under names of its own.
    QStringList Changes() const
    {
        QStringList changes;
        alignas(inotify_event) std::array<char, 16384> buffer{};
        for (ssize_t size = 0; (size = read(Queue, buffer.data(), buffer.size())) > 0;) {
            for (ssize_t i = 0; i < size;) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + i, sizeof(event));
                QString const name = QFile::decodeName(buffer.data() + i + sizeof(event));
                i += static_cast<ssize_t>(sizeof(event) + event.len);
                if (!name.startsWith(QLatin1String(".varnholt-publish.")))
                    changes += ((event.mask & IN_MOVED_TO) != 0 ? "moved " : "other ") +
                               Folders.at(event.wd) + name;
            }
        }
        return changes;
    }

private:
    int Queue;
    std::map<int, QString> Folders;
};

} // namespace Varnholt::TestSupport
