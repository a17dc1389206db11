#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace pavonel::test {

/// The sharpest step in brightness between two neighbouring pixels of a row: gradients have next to none.
inline int contrast(const QImage &picture, const QRect &area) {
    int sharpest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = area.left() + 1; x <= area.right(); ++x)
            sharpest = std::max(sharpest, std::abs(qGray(line[x]) - qGray(line[x - 1])));
    }
    return sharpest;
}

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

inline bool shows(const QImage &picture, const QRect &area, const QColor &colour) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        if (std::find(line + area.left(), line + area.right() + 1, colour.rgb()) != line + area.right() + 1)
            return true;
    }
    return false;
}

} // namespace pavonel::test
