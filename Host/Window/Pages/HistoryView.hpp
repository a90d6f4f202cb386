#pragma once

#include "Host/Window/Main/HistoryEntry.hpp"

#include <QListWidget>
#include <QStringList>

namespace Varnholt::Host {

/// What has happened, with the times, the latest at the end.
class HistoryView : public QListWidget {
    Q_OBJECT

public:
    explicit HistoryView(QWidget* p_Parent = nullptr);

    void Add(HistoryEntry const& p_Entry);
    /// As they are shown, for a diagnosis.
    QStringList Lines() const;

    QSize sizeHint() const override;
};

} // namespace Varnholt::Host
