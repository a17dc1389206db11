#include "UI/BreakLayout.h"

#include "UI/Ring.h"

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

double stackHeight(const BreakLayout::Sizes &sizes) {
    constexpr double spacing = BreakLayout::spacing;
    double height = sizes.titleHeight + spacing + ring::side + spacing + sizes.messageHeight;
    if (sizes.skip)
        height += spacing + BreakLayout::aboveSkip + sizes.skip->height();
    return height;
}

} // namespace

BreakLayout BreakLayout::of(QSizeF window, const Sizes &sizes) {
    const double textWidth = roomForText(window);
    double y = std::round((window.height() - stackHeight(sizes)) / 2);
    const auto place = [&](double width, double height) {
        const QRectF rect((window.width() - width) / 2, y, width, height);
        y += height + spacing;
        return rect;
    };
    BreakLayout layout;
    layout.title = place(textWidth, sizes.titleHeight);
    layout.ring = place(ring::side, ring::side);
    layout.message = place(std::min(textWidth, widestMessage), sizes.messageHeight);
    if (sizes.skip) {
        y += aboveSkip;
        layout.skip = place(sizes.skip->width(), sizes.skip->height());
    }
    return layout;
}

double BreakLayout::roomForText(QSizeF window) {
    return std::max(0.0, window.width() - 2 * padding);
}

double BreakLayout::roomForMessage(QSizeF window, const Sizes &others) {
    return std::max(0.0, window.height() - 2 * padding - stackHeight(others));
}

} // namespace pavonel
