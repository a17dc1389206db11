#include "Platform/Linux/Wayland/Anchoring.h"

#include <cstdlib>

#include <wlr-layer-shell-unstable-v1-client-protocol.h>

namespace pavonel {

Anchoring Anchoring::of(const QRect &rect, const QRect &output) {
    Anchoring anchoring{0, {}};
    const QMargins distance(rect.left() - output.left(), rect.top() - output.top(),
                            output.right() - rect.right(), output.bottom() - rect.bottom());
    if (distance.top() <= distance.bottom()) {
        anchoring.edges |= ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP;
        anchoring.margins.setTop(distance.top());
    } else {
        anchoring.edges |= ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM;
        anchoring.margins.setBottom(distance.bottom());
    }
    if (std::abs(distance.left() - distance.right()) <= 1)
        return anchoring;
    if (distance.left() < distance.right()) {
        anchoring.edges |= ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
        anchoring.margins.setLeft(distance.left());
    } else {
        anchoring.edges |= ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
        anchoring.margins.setRight(distance.right());
    }
    return anchoring;
}

Anchoring Anchoring::everywhere() {
    return {ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT,
            {}};
}

} // namespace pavonel
