#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"

#include "Publisher/Signatures/SigningOptions.hpp"

#include <QString>

namespace Varnholt::Publisher {

/// Which build a channel is to offer.
struct RollbackOptions {
    QString Output;
    QString AppId;
    QString Build;
    bool DevChannel = false;
    bool Quick = false; ///< look only whether its content files are there, do not read them
    SigningOptions Signing = {};
};

/// Makes a channel offer a build that is published already.
/// \return the build that it offered before; null when that cannot be told
/// \throws Failure for a build that is not there, or not completely; nothing has changed then
/// \param p_Observer of the reading; null: nobody
QString RollBack(RollbackOptions const& p_Options, PublicationObserver* p_Observer = nullptr);

} // namespace Varnholt::Publisher
