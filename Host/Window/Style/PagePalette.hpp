#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace Varnholt::Host {

/// The colours of a page, made of what its module supplies so that texts on the panel can be read
/// whatever picture is behind it.
struct PagePalette {
    QColor Ground{18, 20, 24}; ///< where the picture ends
    QColor Panel;              ///< translucent
    QColor Text;
    QColor Quiet; ///< of what matters less
    QColor Accent;
    QColor AccentText; ///< on the accent
    QColor Warning;    ///< of texts that tell of trouble

    /// \param p_Theme "red,green,blue", each 0 to 255 \param p_Ground "#RRGGBB"
    /// \param p_Icon gives the accent; any of them may be unusable
    static PagePalette Of(QString const& p_Theme, QString const& p_Ground, QImage const& p_Icon);

    /// From 1 to 21; of opaque colours.
    static double Contrast(QColor const& p_One, QColor const& p_Other);
    /// The opaque colour that a translucent one gives on an opaque one.
    static QColor Over(QColor const& p_Upper, QColor const& p_Lower);
    /// The least that a text on the panel has to what is behind it.
    static constexpr double c_LeastContrast = 4.5;
};

} // namespace Varnholt::Host
