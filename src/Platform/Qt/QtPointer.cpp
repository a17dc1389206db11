#include "Platform/Qt/QtPointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace pavonel {

namespace {

/// A Wayland compositor tells a program only of the pointer above its own windows.
bool seesWholeDesktop() {
    return !QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

} // namespace

QString QtPointer::limitation() const {
    if (seesWholeDesktop())
        return {};
    return QStringLiteral(
        "This desktop does not tell where the pointer is, so the countdown stays in a corner.");
}

std::optional<QPointF> QtPointer::position() {
    if (!seesWholeDesktop())
        return std::nullopt;
    return QCursor::pos();
}

} // namespace pavonel
