#include "Tests/Hostile/AccessWatch.hpp"

#ifdef Q_OS_LINUX

#include <QDirIterator>
#include <QFile>

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

namespace Varnholt::TestSupport {

namespace {

struct Access {
    quint32 Bit;
    char const* Text;
};

constexpr Access c_Accesses[] = {
    {IN_OPEN, "opened "},         {IN_ACCESS, "read "},     {IN_MODIFY, "written "},
    {IN_ATTRIB, "changed "},      {IN_CREATE, "created "},  {IN_DELETE, "deleted "},
    {IN_MOVED_FROM, "moved "},    {IN_MOVED_TO, "placed "}, {IN_DELETE_SELF, "deleted "},
    {IN_Q_OVERFLOW, "too much "},
};
constexpr quint32 c_Wanted =
    IN_OPEN | IN_ACCESS | IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MOVE | IN_DELETE_SELF;

} // namespace

AccessWatch::AccessWatch(QString const& p_Folder)
    : Queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    QStringList folders(p_Folder);
    QDirIterator below(p_Folder,
                       QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (below.hasNext())
        folders += below.next();
    for (QString const& folder : folders) {
        int const watch = inotify_add_watch(Queue, QFile::encodeName(folder).constData(), c_Wanted);
        if (watch < 0)
            qFatal("cannot watch %s", qPrintable(folder));
        Folders[watch] = folder.mid(p_Folder.size());
    }
    Take(); // watching a folder below another looks into that
}

AccessWatch::~AccessWatch()
{
    close(Queue);
}

bool AccessWatch::IsAble()
{
    return true;
}

QStringList AccessWatch::Take()
{
    QStringList seen;
    alignas(inotify_event) std::array<char, 65536> buffer;
    for (;;) {
        ssize_t const count = read(Queue, buffer.data(), buffer.size());
        if (count <= 0)
            return seen;
        for (ssize_t at = 0; at < count;) {
            inotify_event event = {};
            memcpy(&event, buffer.data() + at, sizeof event);
            QString const name =
                event.len > 0 ? QFile::decodeName(buffer.data() + at + sizeof event) : QString();
            for (Access const& access : c_Accesses)
                if ((event.mask & access.Bit) != 0)
                    seen += access.Text + Folders.value(event.wd) + '/' + name;
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

} // namespace Varnholt::TestSupport

#else

namespace Varnholt::TestSupport {

AccessWatch::AccessWatch(QString const&) {}

AccessWatch::~AccessWatch() = default;

bool AccessWatch::IsAble()
{
    return false;
}

QStringList AccessWatch::Take()
{
    return {};
}

} // namespace Varnholt::TestSupport

#endif
