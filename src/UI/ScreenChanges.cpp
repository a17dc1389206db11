#include "UI/ScreenChanges.h"

#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace pavonel {

ScreenChanges::ScreenChanges(std::function<void()> changed) : changed_(std::move(changed)) {
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { changed_(); });
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](const QScreen *screen) {
        watch(screen);
        changed_();
    });
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached)
        watch(screen);
}

void ScreenChanges::watch(const QScreen *screen) {
    connect(screen, &QScreen::geometryChanged, this, [this] { changed_(); });
    connect(screen, &QScreen::availableGeometryChanged, this, [this] { changed_(); });
}

} // namespace pavonel
