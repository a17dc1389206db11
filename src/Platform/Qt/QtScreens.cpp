#include "Platform/Qt/QtScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace pavonel {

std::vector<Screen> QtScreens::all() {
    const QScreen *main = QGuiApplication::screenAt(QCursor::pos());
    if (!main)
        main = QGuiApplication::primaryScreen();
    std::vector<Screen> screens;
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached)
        screens.push_back({screen->name(), screen->geometry(), screen->availableGeometry(), screen == main});
    return screens;
}

} // namespace pavonel
