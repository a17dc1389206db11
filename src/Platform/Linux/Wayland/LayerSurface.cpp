#include "Platform/Linux/Wayland/LayerSurface.h"

#include "Platform/Linux/Wayland/QtWayland.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel {

namespace {

/// Should another program insist on the keyboard too, this is how often each of us gets it.
constexpr std::chrono::milliseconds askAgainDelay{100};

constexpr std::uint32_t largest = 32'767; // points; what a compositor asks for beyond that is no size

/// The first version in which a surface may change its layer.
constexpr std::uint32_t movableVersion = ZWLR_LAYER_SURFACE_V1_SET_LAYER_SINCE_VERSION;

} // namespace

LayerSurface::LayerSurface(zwlr_layer_shell_v1 &shell, QWindow &window, WindowLayer layer, wl_output *output,
                           const QRect &outputFrame)
    : window_(window), layer_(layer), outputFrame_(outputFrame), surface_(qtWayland::surfaceOf(window)) {
    if (!surface_)
        return;
    giveRole(shell, output);
    if (window.flags() & Qt::WindowTransparentForInput)
        letInputPass();
    wl_surface_commit(surface_);
    keyboardLost_.setSingleShot(true);
    keyboardLost_.setInterval(askAgainDelay);
    connect(&keyboardLost_, &QTimer::timeout, this, &LayerSurface::askForKeyboard);
    window.installEventFilter(this);
}

LayerSurface::~LayerSurface() {
    drop();
}

void LayerSurface::giveRole(zwlr_layer_shell_v1 &shell, wl_output *output) {
    static const zwlr_layer_surface_v1_listener listener{
        [](void *self, zwlr_layer_surface_v1 *, std::uint32_t serial, std::uint32_t width,
           std::uint32_t height) {
            static_cast<LayerSurface *>(self)->configure(serial,
                                                         QSize(static_cast<int>(std::min(width, largest)),
                                                               static_cast<int>(std::min(height, largest))));
        },
        [](void *self, zwlr_layer_surface_v1 *) { static_cast<LayerSurface *>(self)->close(); }};
    role_ = zwlr_layer_shell_v1_get_layer_surface(&shell, surface_, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                  "pavonel");
    zwlr_layer_surface_v1_add_listener(role_, &listener, this);
    if (layer_ == WindowLayer::overlay) {
        zwlr_layer_surface_v1_set_exclusive_zone(role_, -1); // over bars too
        zwlr_layer_surface_v1_set_keyboard_interactivity(role_, 1);
        setPlace(Anchoring::everywhere());
    } else {
        place();
    }
}

void LayerSurface::place() {
    const QRect at = window_.geometry();
    const QSize size = at.size() * qtWayland::scaleOf(window_);
    zwlr_layer_surface_v1_set_size(role_, static_cast<std::uint32_t>(size.width()),
                                   static_cast<std::uint32_t>(size.height()));
    setPlace(Anchoring::of(at, outputFrame_));
}

void LayerSurface::setPlace(const Anchoring &anchoring) {
    const QMargins margins = anchoring.margins * qtWayland::scaleOf(window_);
    zwlr_layer_surface_v1_set_anchor(role_, anchoring.edges);
    zwlr_layer_surface_v1_set_margin(role_, margins.top(), margins.right(), margins.bottom(), margins.left());
}

/// Nothing is committed here: sway tells every surface again whenever any of them changes.
void LayerSurface::configure(std::uint32_t serial, QSize size) {
    zwlr_layer_surface_v1_ack_configure(role_, serial);
    const QSize points = (QSizeF(size) / qtWayland::scaleOf(window_)).toSize();
    if (!size.isEmpty() && points != window_.size())
        window_.resize(points);
    if (!window_.isVisible())
        window_.show();
}

void LayerSurface::stand(Beside what) {
    if (!role_ || what == beside_ || zwlr_layer_surface_v1_get_version(role_) < movableVersion)
        return;
    beside_ = what;
    zwlr_layer_surface_v1_set_layer(role_, what == Beside::break_ ? ZWLR_LAYER_SHELL_V1_LAYER_TOP
                                                                  : ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
    wl_surface_commit(surface_);
}

void LayerSurface::letInputPass() {
    wl_region *nowhere = wl_compositor_create_region(qtWayland::compositor());
    wl_surface_set_input_region(surface_, nowhere);
    wl_region_destroy(nowhere);
}

/// KWin gives the keyboard to each window that opens, and back only to a surface that asks anew.
void LayerSurface::askForKeyboard() {
    if (!role_ || QGuiApplication::focusWindow())
        return;
    for (const std::uint32_t wish : {0U, 1U}) {
        zwlr_layer_surface_v1_set_keyboard_interactivity(role_, wish);
        wl_surface_commit(surface_);
    }
}

bool LayerSurface::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::PlatformSurface) {
        const auto change = static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType();
        if (change == QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed)
            drop();
    } else if (event->type() == QEvent::Move && role_ && layer_ == WindowLayer::panel) {
        place();
        wl_surface_commit(surface_);
    } else if (event->type() == QEvent::FocusOut && layer_ == WindowLayer::overlay) {
        keyboardLost_.start();
    }
    return QObject::eventFilter(watched, event);
}

void LayerSurface::close() {
    drop();
    window_.hide(); // and with that this may go
}

/// The place has to go before the surface.
void LayerSurface::drop() {
    if (role_)
        zwlr_layer_surface_v1_destroy(std::exchange(role_, nullptr));
    surface_ = nullptr;
}

} // namespace pavonel
