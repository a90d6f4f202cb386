#pragma once

#include "Host/Window/Main/HistoryEntry.hpp"
#include "Host/Window/Style/WrappedList.hpp"

#include <QStringList>

namespace Varnholt::Host {

/// What has happened, with the times, the latest at the end.
class HistoryView : public WrappedList {
    Q_OBJECT

public:
    explicit HistoryView(QWidget* p_Parent = nullptr);

    void Add(HistoryEntry const& p_Entry);
    /// As they are shown, for a diagnosis.
    QStringList Lines() const;
};

} // namespace Varnholt::Host
