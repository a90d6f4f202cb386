#include "Publisher/Tree/StorageSync.hpp"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace Varnholt::Publisher {

void StorageSync(QString const& p_Folder)
{
#ifdef Q_OS_LINUX
    int const folder = ::open(QFile::encodeName(p_Folder).constData(), O_RDONLY | O_DIRECTORY);
    if (folder >= 0) {
        int const result = ::syncfs(folder);
        ::close(folder);
        if (result == 0)
            return;
    }
#else
    Q_UNUSED(p_Folder);
#endif
    ::sync();
}

} // namespace Varnholt::Publisher
