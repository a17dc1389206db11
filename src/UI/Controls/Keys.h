#pragma once

#include <QKeyEvent>

namespace pavonel {

/// Besides the space bar, which buttons know by themselves.
inline bool isReturn(const QKeyEvent &event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// Buttons would take these to the next control; a page scrolls by them.
inline bool isArrow(const QKeyEvent &event) {
    return event.key() >= Qt::Key_Left && event.key() <= Qt::Key_Down;
}

} // namespace pavonel
