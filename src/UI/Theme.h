#pragma once

#include <QColor>
#include <QString>

#include <array>
#include <vector>

namespace pavonel {

/// A colour theme of the break screen: a gradient from the top left corner to the bottom right one.
struct Background {
    int id = 0; ///< Its position in the list, and what `Settings::backgroundStyle` holds.
    QString name;
    std::array<QColor, 2> colors; ///< First to last; opaque, sRGB.
};

namespace Theme {

/// Every theme, in the order in which to offer them. Never empty.
const std::vector<Background> &gradients();

/// The theme of a stored number; one that is off the list names the nearest end.
const Background &gradient(int backgroundStyle);

} // namespace Theme

} // namespace pavonel
