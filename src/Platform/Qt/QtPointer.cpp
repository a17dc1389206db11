#include "Platform/Qt/QtPointer.h"

#include <QCursor>

namespace pavonel {

std::optional<QPointF> QtPointer::position() {
    return QCursor::pos();
}

} // namespace pavonel
