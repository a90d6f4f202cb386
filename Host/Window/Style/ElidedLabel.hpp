#pragma once

#include <QLabel>

namespace Varnholt::Host {

/// A line that leaves out its middle where it has no room; the whole is its tool tip then.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* p_Parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* p_Event) override;
};

} // namespace Varnholt::Host
