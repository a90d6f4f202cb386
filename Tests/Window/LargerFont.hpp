#pragma once

#include <QApplication>
#include <QFont>

namespace Varnholt::TestSupport {

/// Lets the user have chosen larger letters, as long as it lives.
class LargerFont {
public:
    explicit LargerFont(int p_Percent)
        : Before(QApplication::font())
    {
        QFont font = Before;
        font.setPointSizeF(font.pointSizeF() * p_Percent / 100);
        QApplication::setFont(font);
    }
    ~LargerFont() { QApplication::setFont(Before); }
    LargerFont(LargerFont const&) = delete;
    LargerFont& operator=(LargerFont const&) = delete;

private:
    QFont const Before;
};

} // namespace Varnholt::TestSupport
