#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Readers of a tree's small files. Where clients would not read what is meant, a sentence about it
/// is added to the defects.
namespace Varnholt::Publisher::ServerTexts {

/// Version files of an application, one for each channel of clients.
QStringList VersionFiles();

/// The build that a version file names, empty when it names none.
QString BuildOf(QByteArray const& p_Version, QString const& p_Source, QStringList& p_Defects);

/// The names of a host list.
QStringList HostsOf(QByteArray const& p_List, QString const& p_Source, QStringList& p_Defects);

} // namespace Varnholt::Publisher::ServerTexts
