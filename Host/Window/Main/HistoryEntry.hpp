#pragma once

#include "Host/Core/Failures/Notice.hpp"

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// A line of what has happened, in the language of its time.
struct HistoryEntry {
    QString Text;
    Notice::Level Severity = Notice::Level::Information;
    QDateTime Time = QDateTime::currentDateTimeUtc();
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::HistoryEntry)
