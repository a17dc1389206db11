#pragma once

#include <QRectF>

namespace pavonel {

/// From pixels of the root window to points of the desktop, as Qt lays out the screens in them: each screen
/// keeps its origin and is scaled by itself. A rectangle belongs to the screen that its centre is on.
QRectF pointsOfPixels(const QRect &pixels);

} // namespace pavonel
