#pragma once

#include <QImage>
#include <QRect>

namespace pavonel {

/// A small opaque picture in a visible window, for what moves there: a change costs its own pixels and no
/// more, where painting the window costs much for each change, however small. It covers what the window shows
/// in its place, and leaves clicks to the window. It must go before the window does.
class Inset {
public:
    virtual ~Inset() = default;

    /// To be painted in. Nothing of it is seen before it is shown.
    QImage &picture() { return picture_; }

    /// Brings what of the picture lies in these pixels of it to the screen: the first time all of it.
    virtual void show(const QRect &pixels) = 0;

protected:
    /// As large as this rectangle of a window with so many pixels to a point.
    Inset(QSize points, double ratio) : picture_(points * ratio, QImage::Format_RGB32) {
        picture_.setDevicePixelRatio(ratio);
    }

private:
    QImage picture_;
};

} // namespace pavonel
