#include "GameModules/FileReplacement.hpp"

#include <QSaveFile>

namespace Varnholt::Launcher {

bool ReplaceFile(QString const& p_Path, QByteArray const& p_Content)
{
    QSaveFile file(p_Path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(p_Content);
    // Small contents wait in a buffer until the commit, which takes no notice of a write that
    // fails then.
    if (!file.flush())
        file.cancelWriting();
    return file.commit();
}

} // namespace Varnholt::Launcher
