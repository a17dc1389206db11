#pragma once

#include <QImage>
#include <QMargins>

class QPainter;

namespace pavonel {

/// The soft shadow of a floating panel, within the panel's own window: few compositors give one to windows
/// that no window manager manages, and a window of its own could come to lie above its panel.
class PanelShadow {
public:
    struct Geometry {
        int drop;       ///< How far it lies below its panel.
        int blur;       ///< How far it reaches beyond the panel on each side.
        double opacity; ///< Where it is darkest.
    };

    /// Of a panel of this size and corner radius.
    PanelShadow(const Geometry &geometry, QSize panel, double radius);

    /// The room that it takes around the panel.
    static QMargins room(const Geometry &geometry);

    /// Where the panel itself lies, nothing is painted.
    void paint(QPainter &painter) const;

private:
    QImage image_;
};

} // namespace pavonel
