#include "UI/SettingsWindow/SettingsWindowController.h"

#include "UI/SettingsWindow/SettingsView.h"
#include "UI/Symbol.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

namespace pavonel {

namespace {

constexpr QColor brandColour(0x16, 0x8F, 0x9A); // on light and on dark title bars

/// Larger with a larger text, as far as the screen goes, and in its middle.
void fit(SettingsView &window) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect free = screen ? screen->availableGeometry() : QRect();
    const auto fitting = [&](const QSize &points) {
        return window.grown(points).boundedTo(free.size() * 0.9).expandedTo(points);
    };
    window.setMinimumSize(fitting({640, 400}));
    QRect place({}, fitting({800, 560}));
    place.moveCenter(free.center());
    window.setGeometry(place);
}

} // namespace

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
