#include "UI/SettingsWindow/SettingsWindowController.h"

#include "UI/SettingsWindow/SettingsView.h"
#include "UI/Symbol.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

#include <algorithm>

namespace pavonel {

namespace {

constexpr QColor brandColour(0x16, 0x8F, 0x9A); // on light and on dark title bars

/// Larger with a larger text, as far as the screen goes, and in its middle.
void fit(SettingsView &window) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect free = screen ? screen->availableGeometry() : QRect();
    const auto fitting = [&](const QSize &points) {
        return windowPlace(free, window.grown(points).boundedTo(free.size() * 0.9).expandedTo(points));
    };
    window.setMinimumSize(fitting({660, 400}).size());
    window.setGeometry(fitting({800, 560}));
}

} // namespace

QRect windowPlace(const QRect &free, const QSize &wanted) {
    constexpr int titleBar = 40; // at most, and the frame
    const QRect room = free.adjusted(0, titleBar, 0, 0);
    QRect place({}, wanted.boundedTo(room.size()));
    place.moveCenter(free.center());
    place.moveTop(std::max(place.top(), room.top()));
    return place;
}

SettingsWindowController::SettingsWindowController(const PageContext &context) : context_(context) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show(std::optional<Page> page) {
    if (page)
        selection.page = *page;
    if (!window_) {
        auto window = std::make_unique<SettingsView>(context_, selection);
        window->setWindowTitle(QStringLiteral("Pavonel"));
        window->setWindowIcon(QPixmap::fromImage(Symbol::mark(brandColour, 2)));
        fit(*window);
        window_ = std::move(window);
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace pavonel
