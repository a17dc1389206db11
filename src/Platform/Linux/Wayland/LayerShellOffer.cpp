#include "Platform/Linux/Wayland/LayerShellOffer.h"

#include <QDeadlineTimer>

#include <cstring>
#include <memory>

#include <poll.h>
#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel::wayland {

namespace {

void noteOffer(void *layerShell, wl_registry *, std::uint32_t, const char *interface, std::uint32_t) {
    if (std::strcmp(interface, zwlr_layer_shell_v1_interface.name) == 0)
        *static_cast<bool *>(layerShell) = true;
}

void noteRemoval(void *, wl_registry *, std::uint32_t) {}

void noteAnswer(void *answered, wl_callback *, std::uint32_t) {
    *static_cast<bool *>(answered) = true;
}

constexpr int longest = 2'000; // milliseconds that a compositor may take to answer

/// Takes in what has come, or comes in time. False when nothing does, or the connection is lost.
bool takeIn(wl_display *display, const QDeadlineTimer &deadline) {
    if (wl_display_prepare_read(display) != 0)
        return wl_display_dispatch_pending(display) >= 0;
    wl_display_flush(display);
    pollfd socket{wl_display_get_fd(display), POLLIN, 0};
    if (::poll(&socket, 1, static_cast<int>(deadline.remainingTime())) != 1) {
        wl_display_cancel_read(display);
        return false;
    }
    return wl_display_read_events(display) == 0 && wl_display_dispatch_pending(display) >= 0;
}

/// Until everything that was asked so far is answered.
void awaitAnswers(wl_display *display) {
    static const wl_callback_listener listener{noteAnswer};
    const QDeadlineTimer deadline(longest);
    bool answered = false;
    wl_callback *last = wl_display_sync(display);
    wl_callback_add_listener(last, &listener, &answered);
    while (!answered && takeIn(display, deadline)) {
    }
    wl_callback_destroy(last);
}

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
    awaitAnswers(display.get());
    wl_registry_destroy(registry);
    return layerShell;
}

} // namespace pavonel::wayland
