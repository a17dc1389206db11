#pragma once

#include <QRectF>
#include <QString>

#include <vector>

namespace pavonel {

/// An attached screen. Rectangles are in points (device-independent pixels), origin at the top left of the
/// desktop, y growing downwards, as in Qt. A system that counts upwards converts in its adapter.
struct Screen {
    QString name;
    QRectF frame;
    QRectF visibleFrame; ///< Without panels and docks.
    bool isMain = false; ///< The screen the user works on; at most one screen is.
};

class Screens {
public:
    Screens() = default;
    Screens(const Screens &) = delete;
    Screens &operator=(const Screens &) = delete;
    virtual ~Screens() = default;

    /// In the system's order; empty when no screen is attached.
    virtual std::vector<Screen> all() = 0;

    /// Whether a screen that goes and comes back has the name that it had. Where it may get another one,
    /// nobody can tell it from a new one.
    virtual bool keepNames() const { return true; }
};

} // namespace pavonel
