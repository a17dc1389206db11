#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace pavonel {

/// Pavonel's line drawings, by name: "eye", "cup.and.saucer". All stand on one square grid.
namespace Symbol {

/// The drawing in one colour on a transparent square. `side` is in points; the image carries the ratio. Null
/// for a name that is not known, and for a side or a ratio that yields no pixel.
QImage image(const QString &name, qreal side, const QColor &tint, qreal devicePixelRatio);

/// The menu-bar mark in one colour, 18 points square, from its own picture for one or two pixels a point.
/// Null when the picture is missing.
QImage mark(const QColor &tint, int devicePixelRatio);

/// Every known name, in alphabetical order.
QStringList names();

} // namespace Symbol
} // namespace pavonel
