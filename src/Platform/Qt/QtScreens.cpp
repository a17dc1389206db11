#include "Platform/Qt/QtScreens.h"

#include <QGuiApplication>

#include <utility>

namespace pavonel {

QtScreens::QtScreens(std::shared_ptr<WorkedOn> workedOn) : workedOn_(std::move(workedOn)) {}

std::vector<Screen> QtScreens::all() {
    const QScreen *main = *workedOn_ ? workedOn_->data() : QGuiApplication::primaryScreen();
    std::vector<Screen> screens;
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached)
        screens.push_back({screen->name(), screen->geometry(), screen->availableGeometry(), screen == main});
    return screens;
}

} // namespace pavonel
