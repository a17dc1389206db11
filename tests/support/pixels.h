#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

#include <algorithm>
#include <vector>

namespace pavonel::test {

/// The sharpest step in brightness between two neighbouring pixels of a row: gradients have next to none.
int contrast(const QImage &picture, const QRect &area);

bool shows(const QImage &picture, const QRect &area, const QColor &colour);

inline bool showsText(const QImage &picture, const QRect &screen) {
    return contrast(picture, screen.adjusted(8, 8, -8, -8)) > 40;
}

/// A break covers every one of the screens, and one of them tells about it. `isCovered` takes the picture and
/// a screen.
template <class IsCovered>
bool showsBreak(const QImage &picture, const std::vector<QRect> &screens, IsCovered isCovered) {
    return std::ranges::all_of(screens, [&](const QRect &screen) { return isCovered(picture, screen); }) &&
           std::ranges::count_if(screens, [&](const QRect &screen) { return showsText(picture, screen); }) ==
               1;
}

} // namespace pavonel::test
