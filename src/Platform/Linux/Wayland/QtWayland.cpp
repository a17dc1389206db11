#include "Platform/Linux/Wayland/QtWayland.h"

#include <QGuiApplication>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformscreen.h>

#include <algorithm>
#include <cstring>

#include <private/qhighdpiscaling_p.h>

namespace pavonel::qtWayland {

namespace {

QPlatformNativeInterface &native() {
    return *QGuiApplication::platformNativeInterface();
}

void bindIfWanted(void *all, wl_registry *registry, std::uint32_t name, const char *interface,
                  std::uint32_t version) {
    for (Wanted &each : *static_cast<std::span<Wanted> *>(all)) {
        if (!each.object && std::strcmp(interface, each.interface.name) == 0)
            each.object =
                wl_registry_bind(registry, name, &each.interface, std::min(version, each.knownVersion));
    }
}

void ignoreRemoval(void *, wl_registry *, std::uint32_t) {}

} // namespace

wl_display *display() {
    return static_cast<wl_display *>(native().nativeResourceForIntegration("wl_display"));
}

wl_compositor *compositor() {
    return static_cast<wl_compositor *>(native().nativeResourceForIntegration("compositor"));
}

wl_surface *surfaceOf(QWindow &window) {
    return static_cast<wl_surface *>(native().nativeResourceForWindow("surface", &window));
}

/// Without any output Qt has a screen of its own making, which its plugin takes for one of the compositor's.
wl_output *outputOf(QScreen *screen) {
    if (screen->handle()->isPlaceholder())
        return nullptr;
    return static_cast<wl_output *>(native().nativeResourceForScreen("output", screen));
}

double scaleOf(QWindow &window) {
    return QHighDpiScaling::factor(&window);
}

void bind(std::span<Wanted> wanted) {
    static const wl_registry_listener listener{bindIfWanted, ignoreRemoval};
    wl_event_queue *queue = wl_display_create_queue(display());
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(display()));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), queue);
    wl_registry *registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &listener, &wanted);
    wl_display_roundtrip_queue(display(), queue);
    wl_registry_destroy(registry);
    for (const Wanted &each : wanted) {
        if (each.object)
            wl_proxy_set_queue(static_cast<wl_proxy *>(each.object), nullptr);
    }
    wl_event_queue_destroy(queue);
}

} // namespace pavonel::qtWayland
