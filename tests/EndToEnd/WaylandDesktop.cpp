#include "EndToEnd/WaylandDesktop.h"

#include "support/pixels.h"

#include <utility>

namespace pavonel::test {

WaylandDesktop::WaylandDesktop(std::unique_ptr<Compositor> compositor)
    : ProgramAtHome(compositor->environment()), compositor_(std::move(compositor)) {}

WaylandDesktop::~WaylandDesktop() {
    stopProgram();
}

/// To its very edges, by a gradient: an output that was just attached is of one colour before its background
/// is drawn.
bool WaylandDesktop::isCovered(const QImage &picture, const QRect &part) {
    return picture.rect().contains(part) && !shows(picture, part, Compositor::background()) &&
           !shows(picture, part, OtherWindow::colour()) &&
           picture.pixel(part.topLeft()) != picture.pixel(part.bottomRight());
}

bool WaylandDesktop::waitForBreak(int outputs) {
    std::vector<QRect> screens;
    for (int index = 0; index < outputs; ++index)
        screens.push_back(screen(index));
    const auto covered = [](const QImage &picture, const QRect &part) { return isCovered(picture, part); };
    return waitUntil([&] { return showsBreak(compositor_->picture(), screens, covered) || !isRunning(); }) &&
           isRunning();
}

bool WaylandDesktop::showsNoBreak() {
    const QImage picture = compositor_->picture();
    return !isCovered(picture, screen(0)) && !isCovered(picture, screen(1));
}

QByteArray WaylandDesktop::complaints() {
    return process().readAllStandardError();
}

} // namespace pavonel::test
