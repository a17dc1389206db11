#pragma once

#include <cstdint>
#include <span>

#include <wayland-client.h>

class QScreen;
class QWindow;

/// What Qt has of the compositor, over its own connection. Null where it has none.
namespace pavonel::qtWayland {

wl_display *display();
wl_compositor *compositor();
wl_surface *surfaceOf(QWindow &window);
wl_output *outputOf(QScreen *screen);

/// How many of the compositor's points one of Qt's is: one, unless the user has Qt draw larger.
double scaleOf(QWindow &window);

/// An interface of the compositor's, the highest version of it that we know, and once bound its object: null
/// where it is not offered.
struct Wanted {
    const wl_interface &interface;
    std::uint32_t knownVersion;
    void *object = nullptr;

    template <class Object> Object *as() const { return static_cast<Object *>(object); }
};

/// Asks the compositor, on a queue of its own, so that nothing of Qt's is answered meanwhile. Later events of
/// the objects come with Qt's.
void bind(std::span<Wanted> wanted);

} // namespace pavonel::qtWayland
