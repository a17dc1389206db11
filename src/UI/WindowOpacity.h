#pragma once

#include <QPixmap>
#include <QPointer>

class QGraphicsOpacityEffect;
class QWidget;

namespace pavonel {

class WindowLayers;

/// How a whole window can be made more or less opaque.
enum class Fading {
    impossible,
    byDesktop, ///< Which is told how opaque it is.
    byPainting ///< The desktop only blends what the window shows.
};

/// On this desktop, at this moment.
Fading fadingOn(const WindowLayers &layers);

/// Makes a window more or less opaque, as far as that can be done.
class WindowOpacity {
public:
    /// The window has no native window yet, or had been prepared for painting before it got one.
    WindowOpacity(QWidget &window, Fading fading);
    WindowOpacity(const WindowOpacity &) = delete;
    WindowOpacity &operator=(const WindowOpacity &) = delete;
    ~WindowOpacity();

    /// From 0 to 1.
    void set(double opacity);

    /// How the window looks when it is wholly opaque.
    QPixmap wholePicture();

private:
    QWidget &window_;
    Fading fading_;
    QPointer<QGraphicsOpacityEffect> effect_; ///< The window's. Only while it is not wholly opaque.
};

} // namespace pavonel
