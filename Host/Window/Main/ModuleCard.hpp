#pragma once

#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Window/Style/PagePalette.hpp"

#include <QImage>
#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// What a module looks like, found out without a session.
struct ModuleCard {
    QString File; ///< absolute
    QString Name;
    QImage Background; ///< any of the images may be null
    QImage Icon;
    QImage SelectedIcon;
    QString Placement; ///< of the background, "top right"
    PagePalette Palette;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::ModuleCard)
