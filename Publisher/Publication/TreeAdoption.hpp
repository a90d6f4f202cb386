#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"

#include "Signing/PublicKey.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Publisher {

/// Makes a copy of a published tree, a mirror's for example, a tree to publish in. Every byte of
/// what its channels offer is read before. \throws Failure for a copy that is not whole, or a tree
/// already; nothing has changed then
/// \param p_Key of a signed copy, which is refused without it; later changes get higher numbers
/// than those of its signatures
void AdoptTree(QString const& p_Output, QString const& p_AppId,
               std::optional<Signing::PublicKey> const& p_Key, PublicationObserver& p_Observer);

} // namespace Varnholt::Publisher
