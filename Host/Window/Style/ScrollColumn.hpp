#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace Varnholt::Host {

/// Widgets below each other, which can be scrolled where they have no room.
class ScrollColumn : public QScrollArea {
    Q_OBJECT

public:
    explicit ScrollColumn(QWidget* p_Parent = nullptr);

    /// What the widgets are added to.
    QVBoxLayout& Content() const { return *Column; }
    /// That lets nothing be scrolled.
    int HeightFor(int p_Width) const;

    QSize sizeHint() const override;

private:
    QVBoxLayout* const Column;
};

} // namespace Varnholt::Host
