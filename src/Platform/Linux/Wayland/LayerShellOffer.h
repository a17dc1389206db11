#pragma once

namespace pavonel::wayland {

/// Whether the environment names a compositor.
bool isOffered();

/// Whether that compositor has a layer shell. Works before there is an application object. A compositor that
/// does not answer has none.
bool offersLayerShell();

} // namespace pavonel::wayland
