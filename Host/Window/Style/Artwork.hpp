#pragma once

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QString>

namespace Varnholt::Host {

/// A picture that fills a page, as its module wants it placed.
class Artwork {
public:
    Artwork() = default;
    /// \param p_Placement words of "top", "bottom", "left", "right" and "center": the side of the
    /// picture that stays when it is cropped, and that it stands at when it ends before the page
    Artwork(QImage p_Picture, QString p_Placement, QColor p_Ground);

    /// The whole page. \param p_Size logical \param p_Ratio device pixels of a logical one
    QPixmap const& For(QSize const& p_Size, qreal p_Ratio);

    /// Where the whole picture lies, seen from the page: it fills the page, but is not enlarged
    /// beyond what looks good.
    static QRect Place(QSize const& p_Picture, QSize const& p_Page, QString const& p_Placement);

private:
    QImage Picture;
    QString Placement;
    QColor Ground;
    QPixmap Drawn;
};

} // namespace Varnholt::Host
