#pragma once

#include <QRectF>
#include <QSizeF>

#include <optional>

namespace pavonel {

/// Where everything stands on the break screen: one stack in the middle of the window, in points.
struct BreakLayout {
    QRectF title;
    QRectF ring;
    QRectF message;
    QRectF skip; ///< Empty while skipping is not permitted.

    static constexpr double spacing = 28;
    static constexpr double padding = 60;
    static constexpr double aboveSkip = 8; ///< On top of the spacing.
    static constexpr double widestMessage = 620;

    struct Sizes {
        double titleHeight = 0;
        double messageHeight = 0;
        std::optional<QSizeF> skip;
    };

    static BreakLayout of(QSizeF window, const Sizes &sizes);

    /// What the window leaves for a line of text.
    static double roomForText(QSizeF window);
    /// What it leaves for the message so that all else stays visible.
    static double roomForMessage(QSizeF window, const Sizes &others);
};

} // namespace pavonel
