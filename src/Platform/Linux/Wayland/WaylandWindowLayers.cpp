#include "Platform/Linux/Wayland/WaylandWindowLayers.h"

#include <QGuiApplication>
#include <QTransform>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel {

namespace {

constexpr std::uint32_t knownVersion = 3;

void bindShell(void *shell, wl_registry *registry, std::uint32_t name, const char *interface,
               std::uint32_t version) {
    auto *&found = *static_cast<zwlr_layer_shell_v1 **>(shell);
    if (!found && std::strcmp(interface, zwlr_layer_shell_v1_interface.name) == 0)
        found = static_cast<zwlr_layer_shell_v1 *>(wl_registry_bind(
            registry, name, &zwlr_layer_shell_v1_interface, std::min(version, knownVersion)));
}

void ignoreRemoval(void *, wl_registry *, std::uint32_t) {}

/// Asked on a queue of its own, so that nothing of Qt's is answered meanwhile; later events come with Qt's.
zwlr_layer_shell_v1 *findShell(wl_display *display) {
    static const wl_registry_listener listener{bindShell, ignoreRemoval};
    zwlr_layer_shell_v1 *shell = nullptr;
    wl_event_queue *queue = wl_display_create_queue(display);
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), queue);
    wl_registry *registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &listener, &shell);
    wl_display_roundtrip_queue(display, queue);
    wl_registry_destroy(registry);
    if (shell)
        wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(shell), nullptr);
    wl_event_queue_destroy(queue);
    return shell;
}

template <class Object> Object *ofQt(const char *name) {
    return static_cast<Object *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration(name));
}

QScreen *screenNamed(const QString &name) {
    const auto attached = QGuiApplication::screens();
    const auto found = std::ranges::find(attached, name, &QScreen::name);
    return found == attached.end() ? nullptr : *found;
}

wl_output *outputOf(QScreen *screen) {
    return static_cast<wl_output *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", screen));
}

} // namespace

std::unique_ptr<WaylandWindowLayers> WaylandWindowLayers::make(std::shared_ptr<WorkedOn> workedOn) {
    const bool leavesWindowsToUs =
        qEnvironmentVariableIntValue("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT") != 0;
    if (!leavesWindowsToUs || !QGuiApplication::platformName().startsWith(u"wayland"))
        return nullptr;
    auto *display = ofQt<wl_display>("wl_display");
    auto *compositor = ofQt<wl_compositor>("compositor");
    zwlr_layer_shell_v1 *shell = display && compositor ? findShell(display) : nullptr;
    if (!shell)
        return nullptr;
    return std::unique_ptr<WaylandWindowLayers>(
        new WaylandWindowLayers({shell, compositor}, std::move(workedOn)));
}

WaylandWindowLayers::WaylandWindowLayers(const LayerSurface::Compositor &compositor,
                                         std::shared_ptr<WorkedOn> workedOn)
    : compositor_(compositor), workedOn_(std::move(workedOn)) {}

WaylandWindowLayers::~WaylandWindowLayers() {
    surfaces_.clear();
    zwlr_layer_shell_v1_destroy(compositor_.shell);
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
    surfaces_.push_back(std::make_unique<LayerSurface>(compositor_, window, layer,
                                                       leftToCompositor ? nullptr : outputOf(output),
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
