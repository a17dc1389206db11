#include "Platform/Linux/Wayland/WaylandWindowLayers.h"

#include "Platform/Linux/Wayland/QtWayland.h"

#include <QGuiApplication>
#include <QTransform>
#include <QWindow>

#include <algorithm>
#include <utility>

#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel {

namespace {

QScreen *screenNamed(const QString &name) {
    const auto attached = QGuiApplication::screens();
    const auto found = std::ranges::find(attached, name, &QScreen::name);
    return found == attached.end() ? nullptr : *found;
}

} // namespace

std::unique_ptr<WaylandWindowLayers> WaylandWindowLayers::make(std::shared_ptr<WorkedOn> workedOn) {
    const bool leavesWindowsToUs =
        qEnvironmentVariableIntValue("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT") != 0;
    if (!leavesWindowsToUs || !QGuiApplication::platformName().startsWith(u"wayland"))
        return nullptr;
    if (!qtWayland::display() || !qtWayland::compositor())
        return nullptr;
    constexpr std::uint32_t knownVersion = 3;
    qtWayland::Wanted shell{zwlr_layer_shell_v1_interface, knownVersion};
    qtWayland::bind({&shell, 1});
    if (!shell.object)
        return nullptr;
    return std::unique_ptr<WaylandWindowLayers>(
        new WaylandWindowLayers(*shell.as<zwlr_layer_shell_v1>(), std::move(workedOn)));
}

WaylandWindowLayers::WaylandWindowLayers(zwlr_layer_shell_v1 &shell, std::shared_ptr<WorkedOn> workedOn)
    : shell_(shell), workedOn_(std::move(workedOn)) {}

WaylandWindowLayers::~WaylandWindowLayers() {
    surfaces_.clear();
    zwlr_layer_shell_v1_destroy(&shell_);
}

/// To windows that bypass the manager Qt gives no place of its own.
Qt::WindowFlags WaylandWindowLayers::windowFlags(WindowLayer layer) const {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;
    return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
}

/// For a panel on the main screen the compositor chooses the output: it knows better where the user works.
void WaylandWindowLayers::show(QWindow &window, WindowLayer layer, const Screen &screen) {
    forget(&window);
    QScreen *output = screenNamed(screen.name);
    const bool leftToCompositor = !output || (layer == WindowLayer::panel && screen.isMain);
    surfaces_.push_back(std::make_unique<LayerSurface>(
        shell_, window, layer, leftToCompositor ? nullptr : qtWayland::outputOf(output),
        output ? output->geometry() : screen.frame.toRect()));
    if (leftToCompositor)
        follow(window);
    // Told before Qt destroys the surface.
    QObject::connect(&window, &QWindow::visibleChanged, &context_, [this, &window](bool visible) {
        if (!visible)
            forget(&window);
    });
    QObject::connect(&window, &QObject::destroyed, &context_, [this, &window] { forget(&window); });
    arrange();
}

void WaylandWindowLayers::follow(QWindow &panel) {
    *workedOn_ = panel.screen();
    QObject::connect(&panel, &QWindow::screenChanged, &context_,
                     [this](QScreen *screen) { *workedOn_ = screen; });
}

void WaylandWindowLayers::forget(const QWindow *window) {
    QObject::disconnect(window, nullptr, &context_, nullptr);
    std::erase_if(surfaces_, [window](const auto &each) { return &each->window() == window; });
    arrange();
}

/// Panels give way to a break, and come to the front again when it is over.
void WaylandWindowLayers::arrange() {
    const bool breakIsUp = std::ranges::any_of(
        surfaces_, [](const auto &each) { return each->layer() == WindowLayer::overlay; });
    for (const auto &each : surfaces_) {
        if (each->layer() == WindowLayer::panel)
            each->stand(breakIsUp ? LayerSurface::Beside::break_ : LayerSurface::Beside::nothing);
    }
}

/// On Wayland Qt takes a mask for where a window receives input.
void WaylandWindowLayers::cutTo(QWindow &window, const QRegion &pixels) {
    const qreal points = 1 / window.devicePixelRatio();
    window.setMask(QTransform::fromScale(points, points).map(pixels));
}

} // namespace pavonel
