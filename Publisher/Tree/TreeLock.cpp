#include "Publisher/Tree/TreeLock.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/TreeMark.hpp"

namespace Varnholt::Publisher {

TreeLock::TreeLock(QString const& p_Root)
    : Root(p_Root)
    , File(TreeMark(p_Root).PrivatePath(QStringLiteral("lock")))
{
}

void TreeLock::Take()
{
    switch (File.Take()) {
    case FileLock::Outcome::Taken:
        return;
    case FileLock::Outcome::Held:
        throw Failure(Root +
                      QStringLiteral(": another run is publishing there (%1)").arg(File.Holder()));
    case FileLock::Outcome::Failed:
        throw Failure(Root + QStringLiteral(": the output folder cannot be locked: ") +
                      qt_error_string(File.Error()));
    }
}

} // namespace Varnholt::Publisher
