#pragma once

#include "Host/Window/Pages/RateHistory.hpp"
#include "Host/Window/Style/PagePalette.hpp"

#include <QWidget>

namespace Varnholt::Host {

/// The rates of the last two minutes as a line, the present at its right end.
class RateGraph : public QWidget {
    Q_OBJECT

public:
    explicit RateGraph(PagePalette const& p_Palette, QWidget* p_Parent = nullptr);

    void Add(qint64 p_Now, quint64 p_Rate);
    void Clear();

protected:
    void paintEvent(QPaintEvent* p_Event) override;

private:
    PagePalette const Colors;
    RateHistory Rates;
};

} // namespace Varnholt::Host
