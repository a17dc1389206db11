#include "Platform/Linux/Wayland/LayerShellOffer.h"

#include <QtGlobal>

#include <cstring>
#include <memory>

#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel::wayland {

namespace {

void noteOffer(void *layerShell, wl_registry *, std::uint32_t, const char *interface, std::uint32_t) {
    if (std::strcmp(interface, zwlr_layer_shell_v1_interface.name) == 0)
        *static_cast<bool *>(layerShell) = true;
}

void noteRemoval(void *, wl_registry *, std::uint32_t) {}

} // namespace

bool isOffered() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool offersLayerShell() {
    static const wl_registry_listener listener{noteOffer, noteRemoval};
    const std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> display(wl_display_connect(nullptr),
                                                                                &wl_display_disconnect);
    if (!display)
        return false;
    bool layerShell = false;
    wl_registry *registry = wl_display_get_registry(display.get());
    wl_registry_add_listener(registry, &listener, &layerShell);
    wl_display_roundtrip(display.get());
    wl_registry_destroy(registry);
    return layerShell;
}

} // namespace pavonel::wayland
