#include "support/pixels.h"

#include <cstdlib>

namespace pavonel::test {

int contrast(const QImage &picture, const QRect &area) {
    int sharpest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = area.left() + 1; x <= area.right(); ++x)
            sharpest = std::max(sharpest, std::abs(qGray(line[x]) - qGray(line[x - 1])));
    }
    return sharpest;
}

bool shows(const QImage &picture, const QRect &area, const QColor &colour) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        if (std::find(line + area.left(), line + area.right() + 1, colour.rgb()) != line + area.right() + 1)
            return true;
    }
    return false;
}

} // namespace pavonel::test
