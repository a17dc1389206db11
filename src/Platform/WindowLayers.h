#pragma once

#include "Platform/Screens.h"
#include "Platform/Service.h"

class QWindow;

namespace pavonel {

enum class WindowLayer {
    panel = 25,    ///< Above every window but an overlay; never takes the keyboard.
    overlay = 1000 ///< Above everything, panels and fullscreen windows included.
};

/// Puts the program's own windows above those of all others, on every desktop, out of taskbars and pagers.
class WindowLayers : public Service {
public:
    /// Prepares a frameless window that was not shown yet; it stays in its layer while it is visible, above
    /// windows that open later too. `screen` is where it stands.
    virtual void assign(QWindow &window, WindowLayer layer, const Screen &screen) = 0;

    /// Gives the keyboard to a visible overlay. Where the desktop decides by itself, nothing happens.
    virtual void takeKeyboard(QWindow &window) = 0;

    /// Gives the keyboard back to the program that had it before `takeKeyboard`.
    virtual void yieldKeyboard() = 0;
};

} // namespace pavonel
