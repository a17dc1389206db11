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
        double scale = 1; ///< Of the ring and of all that is left free.
    };

    static BreakLayout of(QSizeF window, const Sizes &sizes);

    /// 1 where these sizes have room; less on small screens, so that the texts and the button stay whole.
    static double scaleFor(QSizeF window, const Sizes &sizes);
    /// What the window leaves for a line of text.
    static double roomForText(QSizeF window, double scale = 1);
    /// What it leaves for the message so that all else stays visible.
    static double roomForMessage(QSizeF window, const Sizes &others);
};

} // namespace pavonel
