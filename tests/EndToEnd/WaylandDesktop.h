#pragma once

#include "EndToEnd/ProgramAtHome.h"
#include "support/Compositor.h"
#include "support/OtherWindow.h"
#include "support/waitUntil.h"

#include <memory>

namespace pavonel::test {

/// Two outputs of a Wayland compositor side by side and the built program, looked at from outside by the
/// pixels.
class WaylandDesktop : public ProgramAtHome {
public:
    explicit WaylandDesktop(std::unique_ptr<Compositor> compositor);
    ~WaylandDesktop();

    static QRect screen(int index) {
        return {QPoint(Compositor::outputSize.width() * index, 0), Compositor::outputSize};
    }

    Compositor &compositor() { return *compositor_; }

    /// Whether nothing but a break can be seen on this part of a picture, or on all of it.
    static bool isCovered(const QImage &picture, const QRect &part);
    static bool isCovered(const QImage &picture) { return isCovered(picture, picture.rect()); }

    /// Whether a break covers so many outputs, and nothing else can be seen on these.
    bool waitForBreak(int outputs = 2);
    bool showsNoBreak();
    bool waitForNoBreak() {
        return waitUntil([this] { return showsNoBreak(); });
    }

    /// All that the program wrote to its standard error so far.
    QByteArray complaints();

private:
    std::unique_ptr<Compositor> compositor_;
};

} // namespace pavonel::test
