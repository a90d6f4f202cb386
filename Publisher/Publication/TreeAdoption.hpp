#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"

#include <QString>

namespace Varnholt::Publisher {

/// Makes a copy of a published tree, a mirror's for example, a tree to publish in. Every byte of
/// what its channels offer is read before. \throws Failure for a copy that is not whole, or a tree
/// already; nothing has changed then
void AdoptTree(QString const& p_Output, QString const& p_AppId, PublicationObserver& p_Observer);

} // namespace Varnholt::Publisher
