#include "Platform/Linux/Applications/WindowSource.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace pavonel {

WindowSource *WindowSources::telling() const {
    const auto found = std::ranges::find_if(sources_, [](const auto &each) { return each->isTelling(); });
    return found == sources_.end() ? nullptr : found->get();
}

std::vector<OnScreenWindow> ReportedWindowList::onScreenWindows() {
    WindowSource *source = sources_->telling();
    std::vector<OnScreenWindow> windows;
    if (!source)
        return windows;
    for (const FullscreenWindow &window : source->fullscreen()) {
        const QScreen *screen = window.middle ? QGuiApplication::screenAt(window.middle->toPoint()) : nullptr;
        if (!screen)
            screen = QGuiApplication::primaryScreen();
        if (screen)
            windows.push_back({window.owner, 0, QRectF(screen->geometry())});
    }
    return windows;
}

QString ReportedWindowList::limitation() const {
    return sources_->telling() ? QString()
                               : QStringLiteral("This desktop does not tell about fullscreen windows.");
}

std::optional<FrontWindow> ReportedFrontWindow::frontWindow() {
    WindowSource *source = sources_->telling();
    return source ? source->front() : std::nullopt;
}

QString ReportedFrontWindow::limitation() const {
    return sources_->telling() ? QString()
                               : QStringLiteral("This desktop does not tell which program is in front.");
}

} // namespace pavonel
