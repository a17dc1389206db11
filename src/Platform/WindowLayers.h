#pragma once

#include "Platform/Screens.h"
#include "Platform/Service.h"

#include <Qt>

#include <memory>

class QRect;
class QRegion;
class QWindow;

namespace pavonel {

class Inset;

enum class WindowLayer {
    panel = 25,    ///< Above every window but an overlay; never takes the keyboard.
    overlay = 1000 ///< Above everything, panels and fullscreen windows included.
};

/// Puts the program's own windows above those of all others, on every desktop, out of taskbars and pagers.
///
/// How these windows come to be differs between window systems, so whoever makes one keeps to this order:
///   1. `widget.setWindowFlags(layers.windowFlags(layer))`, and `Qt::WA_TranslucentBackground` if wanted;
///   2. `widget.setGeometry(…)`: the screen's frame for an overlay, anywhere on that screen for a panel;
///   3. `widget.winId()`, which makes the native window and so `widget.windowHandle()`;
///   4. `layers.show(*widget.windowHandle(), layer, screen)`;
///   5. for the one overlay that is to get the keys, `layers.takeKeyboard(*widget.windowHandle())`.
/// Moving a visible panel needs nothing more than `widget.move`; hiding a window destroys it. Before the last
/// overlay goes, `yieldKeyboard`.
class WindowLayers : public Service {
public:
    /// All the flags that a window of this layer needs before its native window is made; frameless ones.
    virtual Qt::WindowFlags windowFlags(WindowLayer layer) const = 0;

    /// Shows a window that has its native window and is not visible: at once, or as soon as the desktop
    /// agrees to it. It stays in its layer while it is visible, above windows that open later too. A desktop
    /// that knows better than we where the user works may choose another screen for a panel than the main
    /// one.
    virtual void show(QWindow &window, WindowLayer layer, const Screen &screen) = 0;

    /// Whether a panel comes where we want it, above other windows and without taking the keyboard. Where it
    /// does not, there are to be none.
    virtual bool placesPanels() const { return true; }

    /// Whether a window's translucent parts are blended with what lies below it, at this moment. Where they
    /// are not, they come out black.
    virtual bool canBlend() const = 0;

    /// Whether `QWidget::setWindowOpacity` has an effect, at this moment. Where it has none and windows are
    /// blended, fades are painted.
    virtual bool canFade() const = 0;

    /// A picture for what moves within this rectangle of a visible window; null where the window itself is to
    /// be painted. Its edges lie between pixels. It keeps its place whatever becomes of the window's size.
    virtual std::unique_ptr<Inset> inset(QWindow &window, const QRect &points) = 0;

    /// Cuts a window to this shape: clicks beside it reach what lies below, and where nothing is blended only
    /// the shape is seen. In device pixels, from the window's left upper corner; the window has its native
    /// window and keeps the shape until it is destroyed.
    virtual void cutTo(QWindow &window, const QRegion &pixels) = 0;

    /// Gives the keyboard to a visible overlay. Where the desktop decides by itself, nothing happens.
    virtual void takeKeyboard(QWindow &window) = 0;

    /// Gives the keyboard back to the program that had it before `takeKeyboard`.
    virtual void yieldKeyboard() = 0;
};

} // namespace pavonel
