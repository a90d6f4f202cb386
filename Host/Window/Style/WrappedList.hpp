#pragma once

#include <QListWidget>

namespace Varnholt::Host {

/// Lines that are wrapped where they have no room. It asks for the height of some of them.
class WrappedList : public QListWidget {
    Q_OBJECT

public:
    explicit WrappedList(QWidget* p_Parent = nullptr);

    QSize sizeHint() const override;

protected:
    void updateGeometries() override;
};

} // namespace Varnholt::Host
