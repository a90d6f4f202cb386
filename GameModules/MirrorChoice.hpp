#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Varnholt::Launcher::MirrorChoice {

/// The hosts that a fetched list names: one line without an end, so whatever stands between two
/// blanks is a name, also an empty one. There is always at least one.
QStringList HostsOf(QByteArray const& p_Data);

/// Draws one of the hosts with `rand()`, which is not seeded here. Null when there is none.
QString DrawHost(QStringList const& p_Hosts);

/// "http://" + host + "/".
QString BaseUrlOf(QString const& p_Host);

/// The server to fetch an entry from: a freshly drawn mirror, or the default content server when
/// the entry asks for it, when there is no mirror, or when the drawn one is blank (the list of
/// mirrors was empty).
QString BaseUrlFor(ApplicationManifestFileEntry const& p_Entry, QStringList const& p_Hosts);

/// Whether `BaseUrlFor` could have given this server.
bool MayServe(QString const& p_BaseUrl, ApplicationManifestFileEntry const& p_Entry,
              QStringList const& p_Hosts);

} // namespace Varnholt::Launcher::MirrorChoice
