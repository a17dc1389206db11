#pragma once

namespace pavonel::wayland {

/// Whether the environment names a compositor.
bool isOffered();

/// Whether that compositor has a layer shell. Works before there is an application object, and waits for the
/// compositor as Qt will too.
bool offersLayerShell();

} // namespace pavonel::wayland
