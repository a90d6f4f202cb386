#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace Varnholt::Host::MirrorFilter {

/// The host names of a list that are worth asking.
///
/// Blanks and line ends around a name go, and empty names; a list that holds anything but names (an
/// error page, say) is no list at all. Of what remains the dead go, unless all are dead.
/// \return possibly empty: the module then asks the default server
QStringList Apply(QStringList const& p_Hosts, QSet<QString> const& p_Dead);

/// True when the list holds something that is not a host name.
bool IsForeign(QStringList const& p_Hosts);

} // namespace Varnholt::Host::MirrorFilter
