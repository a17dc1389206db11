#include "Platform/Linux/Wayland/WaylandInsets.h"

#include "Platform/Linux/Wayland/QtWayland.h"
#include "Platform/Linux/Wayland/SharedPixels.h"

#include <QEvent>
#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <array>
#include <utility>

#include <viewporter-client-protocol.h>

namespace pavonel {

namespace {

QRectF scaled(const QRect &rect, double scale) {
    return {QPointF(rect.topLeft()) * scale, QSizeF(rect.size()) * scale};
}

/// A window that opens anew has another surface.
class WaylandInset final : public QObject, public Inset {
public:
    WaylandInset(const WaylandInsets::Offers &offers, QWindow &window, const QRect &points, double ratio)
        : Inset(points.size(), ratio), offers_(offers), window_(window),
          points_(scaled(points, qtWayland::scaleOf(window)).toRect()),
          ratio_(ratio / qtWayland::scaleOf(window)) {
        connect(&window, &QWindow::visibleChanged, this, [this](bool visible) {
            if (!visible)
                disappear(); // Qt destroys the surface after that
        });
        window.installEventFilter(this);
    }

    ~WaylandInset() override { disappear(); }

    /// Makes it a part of the window as it is now. False where the window or the compositor cannot, or there
    /// is no memory.
    bool appear() {
        wl_surface *large = qtWayland::surfaceOf(window_);
        if (!large)
            return false;
        surface_ = wl_compositor_create_surface(qtWayland::compositor());
        place_ = wl_subcompositor_get_subsurface(offers_.subcompositor, surface_, large);
        wl_subsurface_set_position(place_, points_.x(), points_.y());
        wl_subsurface_set_desync(place_);
        wl_region *nowhere = wl_compositor_create_region(qtWayland::compositor());
        wl_surface_set_input_region(surface_, nowhere);
        wl_region_destroy(nowhere);
        pixels_ = SharedPixels::make(*offers_.memory, picture().size(), [this] { present(); });
        const bool canShow = setScale() && pixels_;
        if (!canShow)
            disappear();
        return canShow;
    }

    void show(const QRect &pixels) override {
        if (!surface_ && !appear())
            return;
        pixels_->markChanged(pixels);
        due_ |= isPart_ ? pixels : picture().rect();
        present();
        if (!std::exchange(isPart_, true))
            wl_surface_commit(qtWayland::surfaceOf(window_)); // with which it becomes a part of the window
    }

    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::PlatformSurface &&
            static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType() ==
                QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed)
            disappear();
        return QObject::eventFilter(watched, event);
    }

private:
    bool setScale() {
        const int whole = qRound(ratio_);
        if (whole == ratio_) {
            wl_surface_set_buffer_scale(surface_, whole);
        } else if (offers_.viewporter) {
            size_ = wp_viewporter_get_viewport(offers_.viewporter, surface_);
            wp_viewport_set_destination(size_, points_.width(), points_.height());
        } else {
            return false;
        }
        return true;
    }

    /// Now, or as soon as the compositor has a picture to spare.
    void present() {
        if (due_.isEmpty())
            return;
        wl_buffer *buffer = pixels_->copyOf(picture());
        if (!buffer)
            return;
        const QRect changed =
            QRectF(QPointF(due_.topLeft()) / ratio_, QSizeF(due_.size()) / ratio_).toAlignedRect();
        wl_surface_attach(surface_, buffer, 0, 0);
        wl_surface_damage(surface_, changed.x(), changed.y(), changed.width(), changed.height());
        wl_surface_commit(surface_);
        due_ = QRect();
    }

    void disappear() {
        if (!surface_)
            return;
        if (size_)
            wp_viewport_destroy(std::exchange(size_, nullptr));
        wl_subsurface_destroy(place_);
        wl_surface_destroy(std::exchange(surface_, nullptr));
        pixels_.reset();
        isPart_ = false;
    }

    const WaylandInsets::Offers &offers_;
    QWindow &window_;
    QRect points_; ///< Where it lies in the window and how large it is, in points of the compositor's.
    double ratio_; ///< Of pixels to these.
    wl_surface *surface_ = nullptr; ///< Null while the window has none.
    wl_subsurface *place_ = nullptr;
    wp_viewport *size_ = nullptr;
    std::unique_ptr<SharedPixels> pixels_;
    QRect due_; ///< Of the pixels that the compositor does not know yet.
    bool isPart_ = false;
};

} // namespace

WaylandInsets::WaylandInsets() {
    if (!qtWayland::display() || !qtWayland::compositor())
        return;
    std::array<qtWayland::Wanted, 3> wanted{
        {{wl_shm_interface, 1}, {wl_subcompositor_interface, 1}, {wp_viewporter_interface, 1}}};
    qtWayland::bind(wanted);
    offers_.memory = wanted[0].as<wl_shm>();
    offers_.subcompositor = wanted[1].as<wl_subcompositor>();
    offers_.viewporter = wanted[2].as<wp_viewporter>();
}

WaylandInsets::~WaylandInsets() {
    if (offers_.memory)
        wl_shm_destroy(offers_.memory);
    if (offers_.subcompositor)
        wl_subcompositor_destroy(offers_.subcompositor);
    if (offers_.viewporter)
        wp_viewporter_destroy(offers_.viewporter);
}

std::unique_ptr<Inset> WaylandInsets::make(QWindow &window, const QRect &points) {
    return make(window, points, window.devicePixelRatio());
}

std::unique_ptr<Inset> WaylandInsets::make(QWindow &window, const QRect &points, double ratio) {
    const QRectF place = scaled(points, qtWayland::scaleOf(window));
    if (!offers_.memory || !offers_.subcompositor || place != place.toRect())
        return nullptr;
    auto inset = std::make_unique<WaylandInset>(offers_, window, points, ratio);
    return inset->appear() ? std::move(inset) : nullptr;
}

} // namespace pavonel
