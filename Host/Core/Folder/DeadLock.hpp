#pragma once

#include <QString>

namespace Varnholt::Host {

/// Removes the file of a lock that nobody holds although the lock's class cannot tell: the class
/// looks for the process that the file names, and sees neither that its owner was killed before it
/// had written all of that, nor that this process once held it under another path.
/// \param p_OwnIsDead whether one that names this process is dead when nobody holds its file
/// \return true when it was removed
bool RemoveDeadLock(QString const& p_Path, bool p_OwnIsDead);

} // namespace Varnholt::Host
