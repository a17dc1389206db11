#pragma once

#include "Platform/Appearance.h"
#include "Platform/DisplayServices.h"
#include "Platform/Screens.h"
#include "Platform/WindowLayers.h"
#include "UI/Palette.h"
#include "UI/Panels/PanelShadow.h"
#include "UI/WindowOpacity.h"

#include <QPixmap>
#include <QWidget>

namespace pavonel {

/// A small window above those of all other programs, on every desktop, that never takes the keyboard: a slab
/// of material with round corners, on which one child, the content, lies. The slab is its contents'
/// rectangle; around it is room for the shadow, where windows are blended.
class FloatingPanel : public QWidget {
public:
    enum class Mouse {
        received,
        ignored ///< Clicks reach whatever lies below.
    };
    struct Make {
        QString title;        ///< Of the window; nobody sees it, but other programs read it.
        QSize size;           ///< Of the slab.
        double radius;        ///< Of the corners.
        double borderOpacity; ///< Of the white line along the inside of the edge.
        Mouse mouse;
        PanelShadow::Geometry shadow;
    };

    FloatingPanel(const DisplayServices &display, const Make &make);

    /// They follow the user's wishes for as long as the panel lives.
    const Palette &colours() const { return palette_; }

    /// Shows it with its left upper corner there, in front, without activating it. `screen` is the one it
    /// stands on; absent while there is none.
    void present(QPoint corner, const std::optional<Screen> &screen);

    /// Brings the slab's left upper corner there.
    void moveTo(QPoint corner);

    /// From 0 to 1, where windows can be faded.
    void setOpacity(double opacity) { opacity_.set(opacity); }

    /// For its last moments on screen: it keeps its picture and is deaf to the mouse from now on.
    void retire();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void takeColours();
    void paintMaterial(QPainter &painter) const;

    DisplayServices display_;
    Make make_;
    Palette palette_;
    Appearance::Listening onAppearance_;
    bool blends_;
    WindowOpacity opacity_;
    QPixmap last_;                      ///< How it looked when it was retired.
    std::optional<PanelShadow> shadow_; ///< Where windows are blended.
};

/// The screen that notices appear on; absent while none is attached.
std::optional<Screen> mainScreen(const std::vector<Screen> &screens);

} // namespace pavonel
