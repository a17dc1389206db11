#pragma once

#include "Platform/Inset.h"

#include <memory>

class QWindow;
struct wl_shm;
struct wl_subcompositor;
struct wp_viewporter;

namespace pavonel {

/// Small surfaces within the surfaces of Qt's windows, with memory of their own.
class WaylandInsets {
public:
    /// Asks the compositor what it offers for that.
    WaylandInsets();
    WaylandInsets(const WaylandInsets &) = delete;
    WaylandInsets &operator=(const WaylandInsets &) = delete;
    ~WaylandInsets();

    /// Null where the compositor offers too little, or no memory is to be had.
    std::unique_ptr<Inset> make(QWindow &window, const QRect &points);

    /// With so many pixels to a point, not as many as the window has.
    std::unique_ptr<Inset> make(QWindow &window, const QRect &points, double ratio);

    struct Offers {
        wl_shm *memory = nullptr;
        wl_subcompositor *subcompositor = nullptr;
        wp_viewporter *viewporter = nullptr;
    };

private:
    Offers offers_;
};

} // namespace pavonel
