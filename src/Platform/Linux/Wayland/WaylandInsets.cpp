#include "Platform/Linux/Wayland/WaylandInsets.h"

#include "Platform/Linux/Wayland/QtWayland.h"
#include "Platform/Linux/Wayland/SharedPixels.h"

#include <QWindow>

#include <array>
#include <utility>

#include <viewporter-client-protocol.h>

namespace pavonel {

namespace {

/// Where it lies and how large it is, in points of the window.
class WaylandInset final : public Inset {
public:
    WaylandInset(wl_subcompositor &subcompositor, wl_surface &large, const QRect &points, double ratio)
        : Inset(points.size(), ratio), large_(large), ratio_(ratio),
          surface_(wl_compositor_create_surface(qtWayland::compositor())),
          place_(wl_subcompositor_get_subsurface(&subcompositor, surface_, &large)) {
        wl_subsurface_set_position(place_, points.x(), points.y());
        wl_subsurface_set_desync(place_);
        wl_region *nowhere = wl_compositor_create_region(qtWayland::compositor());
        wl_surface_set_input_region(surface_, nowhere);
        wl_region_destroy(nowhere);
    }

    ~WaylandInset() override {
        if (size_)
            wp_viewport_destroy(size_);
        wl_subsurface_destroy(place_);
        wl_surface_destroy(surface_);
    }

    /// False where the compositor cannot, or there is no memory.
    bool prepare(wl_shm &shm, wp_viewporter *viewporter, QSize points) {
        const int whole = qRound(ratio_);
        if (whole == ratio_) {
            wl_surface_set_buffer_scale(surface_, whole);
        } else if (viewporter) {
            size_ = wp_viewporter_get_viewport(viewporter, surface_);
            wp_viewport_set_destination(size_, points.width(), points.height());
        } else {
            return false;
        }
        pixels_ = SharedPixels::make(shm, picture().size(), [this] { present(); });
        return pixels_ != nullptr;
    }

    void show(const QRect &pixels) override {
        pixels_->markChanged(pixels);
        due_ |= pixels;
        present();
        if (std::exchange(isNew_, false))
            wl_surface_commit(&large_); // with which it becomes a part of the window
    }

private:
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

    wl_surface &large_;
    double ratio_;
    wl_surface *surface_;
    wl_subsurface *place_;
    wp_viewport *size_ = nullptr;
    std::unique_ptr<SharedPixels> pixels_;
    QRect due_; ///< Of the pixels that the compositor does not know yet.
    bool isNew_ = true;
};

} // namespace

WaylandInsets::WaylandInsets() {
    if (!qtWayland::display() || !qtWayland::compositor())
        return;
    std::array<qtWayland::Wanted, 3> wanted{
        {{wl_shm_interface, 1}, {wl_subcompositor_interface, 1}, {wp_viewporter_interface, 1}}};
    qtWayland::bind(wanted);
    memory_ = wanted[0].as<wl_shm>();
    subcompositor_ = wanted[1].as<wl_subcompositor>();
    viewporter_ = wanted[2].as<wp_viewporter>();
}

WaylandInsets::~WaylandInsets() {
    if (memory_)
        wl_shm_destroy(memory_);
    if (subcompositor_)
        wl_subcompositor_destroy(subcompositor_);
    if (viewporter_)
        wp_viewporter_destroy(viewporter_);
}

std::unique_ptr<Inset> WaylandInsets::make(QWindow &window, const QRect &points) {
    wl_surface *large = qtWayland::surfaceOf(window);
    if (!memory_ || !subcompositor_ || !large)
        return nullptr;
    auto inset = std::make_unique<WaylandInset>(*subcompositor_, *large, points, window.devicePixelRatio());
    return inset->prepare(*memory_, viewporter_, points.size()) ? std::move(inset) : nullptr;
}

} // namespace pavonel
