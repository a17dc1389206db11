#pragma once

#include <QFont>
#include <QString>

class QFontMetricsF;
class QPainter;
class QPointF;

namespace pavonel::fonts {

/// The one type family of all windows: Inter where it is installed, else the system's own. `size` is in
/// points (device-independent pixels).
QFont ui(int size, QFont::Weight weight = QFont::Normal);

/// The width of `text` when every digit takes as much room as the widest one, so that a running clock stands
/// still.
double tabularWidth(const QFontMetricsF &metrics, const QString &text);

/// Draws so with the painter's font and pen, from the left end of the base line.
void drawTabular(QPainter &painter, QPointF baseline, const QString &text);

} // namespace pavonel::fonts
