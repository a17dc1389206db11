#include "EndToEnd/SwayDesktop.h"

#include "EndToEnd/pixels.h"
#include "support/waitUntil.h"

#include <utility>

namespace pavonel::test {

namespace {

/// To its very edges.
bool isCovered(const QImage &picture, const QRect &screen) {
    return picture.rect().contains(screen) && !shows(picture, screen, Sway::background()) &&
           !shows(picture, screen, OtherWindow::colour());
}

} // namespace

SwayDesktop::SwayDesktop() : SwayDesktop(std::make_unique<Sway>()) {}

SwayDesktop::SwayDesktop(std::unique_ptr<Sway> sway)
    : ProgramAtHome(sway->environment()), sway_(std::move(sway)) {}

SwayDesktop::~SwayDesktop() {
    stopProgram();
}

bool SwayDesktop::waitForBreak(int outputs) {
    return waitUntil([&] {
               const QImage picture = sway_->picture();
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

bool SwayDesktop::waitForNoBreak() {
    return waitUntil([&] {
        const QImage picture = sway_->picture();
        return !isCovered(picture, screen(0)) && !isCovered(picture, screen(1));
    });
}

QByteArray SwayDesktop::complaints() {
    return process().readAllStandardError();
}

} // namespace pavonel::test
