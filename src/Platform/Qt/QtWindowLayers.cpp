#include "Platform/Qt/QtWindowLayers.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTransform>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace pavonel {

namespace {

bool isOnWayland() {
    return QGuiApplication::platformName().startsWith(u"wayland");
}

/// Should another program insist on being in front too, this is how often each of us is.
constexpr std::chrono::milliseconds comeBackDelay{300};

} // namespace

QtWindowLayers::QtWindowLayers(MakeInset makeInset) : makeInset_(std::move(makeInset)) {
    keyboardLost_.setSingleShot(true);
    keyboardLost_.setInterval(comeBackDelay);
    QObject::connect(&keyboardLost_, &QTimer::timeout, &context_, [this] { comeBack(); });
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &context_, [this](const QWindow *ours) {
        if (!ours && !overlays_.empty() && isOnWayland())
            keyboardLost_.start();
    });
}

/// A compositor raises no window for a program, but puts one that opens in front.
void QtWindowLayers::comeBack() {
    if (QGuiApplication::focusWindow())
        return;
    const auto overlays = overlays_;
    for (QWindow *each : overlays) {
        each->hide();
        each->showFullScreen();
    }
}

QString QtWindowLayers::limitation() const {
    return placesPanels()
               ? QStringLiteral("This desktop does not let a break lie above fullscreen windows.")
               : QStringLiteral(
                     "This desktop lets no notices of ours above other windows: it shows them in its "
                     "own way, and the countdown not at all.");
}

Qt::WindowFlags QtWindowLayers::windowFlags(WindowLayer layer) const {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
}

/// Fullscreen, a window is bound to its screen, and the desktop puts it above its bars.
void QtWindowLayers::show(QWindow &window, WindowLayer layer, const Screen &screen) {
    if (layer == WindowLayer::panel) {
        window.show();
        return;
    }
    const auto attached = QGuiApplication::screens();
    const auto wanted = std::ranges::find(attached, screen.name, &QScreen::name);
    if (wanted != attached.end())
        window.setScreen(*wanted);
    overlays_.push_back(&window);
    QObject::connect(&window, &QObject::destroyed, &context_,
                     [this, &window] { std::erase(overlays_, &window); });
    window.showFullScreen();
}

/// On Wayland the compositor alone decides that.
bool QtWindowLayers::placesPanels() const {
    return !isOnWayland();
}

bool QtWindowLayers::canBlend() const {
    return isOnWayland(); // every compositor there does
}

/// Qt takes whole points only.
void QtWindowLayers::cutTo(QWindow &window, const QRegion &pixels) {
    const qreal points = 1 / window.devicePixelRatio();
    window.setMask(QTransform::fromScale(points, points).map(pixels));
}

void QtWindowLayers::takeKeyboard(QWindow &window) {
    if (const auto found = std::ranges::find(overlays_, &window); found != overlays_.end())
        std::rotate(found, found + 1, overlays_.end());
    window.requestActivate();
}

} // namespace pavonel
