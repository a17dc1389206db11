#include "UI/BreakLayout.h"

#include "UI/Ring.h"

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

/// Of what has its size at any scale.
double wholeHeight(const BreakLayout::Sizes &sizes) {
    return sizes.titleHeight + sizes.messageHeight + (sizes.skip ? sizes.skip->height() : 0);
}

/// Of what gives way on small screens, without what is left free above and below.
double flexibleHeight(const BreakLayout::Sizes &sizes) {
    constexpr double spacing = BreakLayout::spacing;
    return spacing + ring::side + spacing + (sizes.skip ? spacing + BreakLayout::aboveSkip : 0);
}

double stackHeight(const BreakLayout::Sizes &sizes) {
    return wholeHeight(sizes) + sizes.scale * flexibleHeight(sizes);
}

} // namespace

BreakLayout BreakLayout::of(QSizeF window, const Sizes &sizes) {
    const double textWidth = roomForText(window, sizes.scale);
    const double ringSide = std::round(sizes.scale * ring::side);
    double y = std::round((window.height() - stackHeight(sizes)) / 2);
    const auto place = [&](double width, double height) {
        const QRectF rect((window.width() - width) / 2, y, width, height);
        y += height + sizes.scale * spacing;
        return rect;
    };
    BreakLayout layout;
    layout.title = place(textWidth, sizes.titleHeight);
    layout.ring = place(ringSide, ringSide);
    layout.message = place(std::min(textWidth, widestMessage), sizes.messageHeight);
    if (sizes.skip) {
        y += sizes.scale * aboveSkip;
        layout.skip = place(sizes.skip->width(), sizes.skip->height());
    }
    return layout;
}

double BreakLayout::scaleFor(QSizeF window, const Sizes &sizes) {
    constexpr double smallest = 1.0 / 3;
    const double room = window.height() - wholeHeight(sizes);
    return std::clamp(room / (2 * padding + flexibleHeight(sizes)), smallest, 1.0);
}

double BreakLayout::roomForText(QSizeF window, double scale) {
    return std::max(0.0, window.width() - 2 * scale * padding);
}

double BreakLayout::roomForMessage(QSizeF window, const Sizes &others) {
    const double room = window.height() - 2 * others.scale * padding - stackHeight(others);
    return std::max(0.0, std::round(room)); // whole lines fit exactly at the scale that was made for them
}

} // namespace pavonel
