#include "EndToEnd/WaylandDesktop.h"

#include "EndToEnd/pixels.h"

#include <utility>

namespace pavonel::test {

namespace {

/// To its very edges.
bool isCovered(const QImage &picture, const QRect &screen) {
    return picture.rect().contains(screen) && !shows(picture, screen, Compositor::background()) &&
           !shows(picture, screen, OtherWindow::colour());
}

} // namespace

WaylandDesktop::WaylandDesktop(std::unique_ptr<Compositor> compositor)
    : ProgramAtHome(compositor->environment()), compositor_(std::move(compositor)) {}

WaylandDesktop::~WaylandDesktop() {
    stopProgram();
}

bool WaylandDesktop::waitForBreak(int outputs) {
    return waitUntil([&] {
               const QImage picture = compositor_->picture();
               int covered = 0;
               int withText = 0;
               for (int index = 0; index < outputs; ++index) {
                   covered += isCovered(picture, screen(index)) ? 1 : 0;
                   withText += showsText(picture, screen(index)) ? 1 : 0;
               }
               return (covered == outputs && withText == 1) || !isRunning();
           }) &&
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
