#include "Platform/Linux/Gnome/GnomePointer.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/X11/X11Points.h"

namespace pavonel {

std::optional<QPointF> GnomePointer::position() {
    const auto pixels = extension_->pointer();
    if (!pixels)
        return std::nullopt;
    return pointsOfPixels(QRect(*pixels, QSize(1, 1))).topLeft();
}

QString GnomePointer::limitation() const {
    if (extension_->isPresent())
        return {};
    return QStringLiteral(
               "This desktop does not tell where the pointer is, so the countdown stays in a corner.") +
           extension_->advice();
}

} // namespace pavonel
