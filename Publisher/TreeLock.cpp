#include "Publisher/TreeLock.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/TreeMark.hpp"

namespace Varnholt::Publisher {

TreeLock::TreeLock(QString const& p_Root)
    : Root(p_Root)
    , Lock(std::make_unique<QLockFile>(TreeMark(p_Root).PrivatePath(QStringLiteral("lock"))))
{
    // A run takes as long as it takes; the lock of a program that died is recognised by its id.
    Lock->setStaleLockTime(0);
}

void TreeLock::Take()
{
    if (Lock->tryLock())
        return;
    bool const taken = Lock->error() == QLockFile::LockFailedError;
    throw Failure(Root + (taken ? QStringLiteral(": another run is publishing there")
                                : QStringLiteral(": the output folder cannot be written")));
}

} // namespace Varnholt::Publisher
