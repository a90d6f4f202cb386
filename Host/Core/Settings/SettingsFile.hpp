#pragma once

#include "Host/Core/Failures/Failure.hpp"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

/// A settings file as it is on the disk, an INI file. Any thread.
namespace Varnholt::Host::SettingsFile {

using Values = QMap<QString, QVariant>;

struct Content {
    QByteArray Bytes;               ///< empty when there is no file
    std::optional<Failure> Problem; ///< why it is of no use
};

/// The whole file, looked through: what is cut short or no settings at all must not be taken for
/// settings that hold little.
Content Read(QString const& p_File);

/// The values of a file that `Read` has found in order. One that was parsed under this name before
/// and looks the same is not read again.
Values Parse(QString const& p_File);

/// Makes changes. \param p_Changes an invalid value removes its key
void Apply(Values& p_Values, Values const& p_Changes);

/// The file's name, the same for every way to write it: absolute, with no links in it. The file
/// and its folders need not exist.
QString Canonical(QString const& p_File);

} // namespace Varnholt::Host::SettingsFile
