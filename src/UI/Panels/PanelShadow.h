#pragma once

#include "Platform/Platform.h"

#include <QImage>
#include <QWidget>

namespace pavonel {

/// The soft shadow of a floating panel: a window of its own right below it, so that the panel's window is no
/// larger than the panel. Few compositors give a shadow to windows that no window manager manages.
class PanelShadow final : public QWidget {
public:
    struct Look {
        int drop;       ///< How far it lies below its panel.
        int blur;       ///< How far it reaches beyond the panel on each side.
        double opacity; ///< Where it is darkest.
    };

    /// Of a panel of this size and corner radius. Only where windows are blended.
    PanelShadow(Platform &platform, const Look &look, QSize panel, double radius);

    /// Shows it for a panel whose left upper corner is there; to be done before the panel is shown.
    void present(QPoint corner, const Screen &screen);
    void follow(QPoint corner);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Platform &platform_;
    QPoint toPanel_; ///< From our corner to that of the panel.
    QImage image_;
};

} // namespace pavonel
