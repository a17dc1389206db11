#include "UI/SettingsWindow/SettingsWindowController.h"

#include "UI/SettingsWindow/SettingsView.h"
#include "UI/Symbol.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

namespace pavonel {

namespace {

constexpr QColor brandColour(0x16, 0x8F, 0x9A); // on light and on dark title bars
constexpr QSize contentSize(800, 560);
constexpr QSize smallest(620, 400);

void centre(QWidget &window) {
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect free = screen->availableGeometry();
        window.setGeometry(QRect(free.center() - window.rect().center(), window.size()));
    }
}

} // namespace

SettingsWindowController::SettingsWindowController(const PageContext &context) : context_(context) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show(std::optional<Page> page) {
    if (page)
        selection.page = *page;
    if (!window_) {
        window_ = std::make_unique<SettingsView>(context_, selection);
        window_->setWindowTitle(QStringLiteral("Pavonel"));
        window_->setWindowIcon(QPixmap::fromImage(Symbol::mark(brandColour, 2)));
        window_->setMinimumSize(smallest);
        window_->resize(contentSize);
        centre(*window_);
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace pavonel
