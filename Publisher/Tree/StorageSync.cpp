#include "Publisher/Tree/StorageSync.hpp"

#include "Publisher/Failure.hpp"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Varnholt::Publisher {

void StorageSync(QString const& p_Folder)
{
#ifdef Q_OS_LINUX
    int const folder = ::open(QFile::encodeName(p_Folder).constData(), O_RDONLY | O_DIRECTORY);
    if (folder >= 0) {
        int const error = ::syncfs(folder) == 0 ? 0 : errno;
        ::close(folder);
        if (error == 0)
            return;
        if (error != ENOSYS) {
            throw Failure(p_Folder + QStringLiteral(": what was written may not be on the disk: ") +
                          qt_error_string(error));
        }
    }
#else
    Q_UNUSED(p_Folder);
#endif
    ::sync();
}

} // namespace Varnholt::Publisher
