#pragma once

#include <QRectF>

class QScreen;

namespace pavonel {

/// The pixels of the root window that a screen shows.
QRect pixelsOf(const QScreen *screen);

/// The screen that shows the most of a rectangle of the root window; null when none shows any.
const QScreen *screenShowing(const QRect &pixels);

/// From pixels of the root window to points of the desktop, as Qt lays out the screens in them: each screen
/// keeps its origin and is scaled by itself.
QRectF pointsOfPixels(const QRect &pixels, const QScreen *screen);

/// The same for the screen that shows the most of it; what is on no screen stays as it is.
QRectF pointsOfPixels(const QRect &pixels);

} // namespace pavonel
