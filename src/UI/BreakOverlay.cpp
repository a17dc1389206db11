#include "UI/BreakOverlay.h"

#include "Platform/Platform.h"

#include <QBackingStore>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <functional>
#include <utility>

namespace pavonel {

namespace {

constexpr Seconds fadeIn = 0.45;
constexpr Seconds fadeOut = 0.3; // going is quicker than coming
constexpr std::uint32_t escapeKeyCode = 53;

} // namespace

OverlayWindow::OverlayWindow(const Screen &screen, std::unique_ptr<BreakOverlayView> view)
    : screenName_(screen.name) {
    setWindowTitle(QStringLiteral("Pavonel Break"));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_NoSystemBackground); // the view covers it
    setView(std::move(view));
}

void OverlayWindow::setView(std::unique_ptr<BreakOverlayView> view) {
    view_ = std::move(view);
    view_->setParent(this);
    view_->setGeometry(rect());
    view_->show();
}

void OverlayWindow::orderFront(WindowLayers &layers, const Screen &screen, double opacity) {
    setWindowFlags(layers.windowFlags(WindowLayer::overlay));
    setGeometry(screen.frame.toRect());
    setWindowOpacity(opacity);
    winId();
    // Now, for while the server takes over another window's painting it lets us wait for the memory.
    backingStore()->resize(size());
    layers.assign(*windowHandle(), WindowLayer::overlay, screen);
    show();
}

/// A break cannot be closed away.
void OverlayWindow::closeEvent(QCloseEvent *event) {
    event->ignore();
}

void OverlayWindow::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    view_->setGeometry(rect());
}

OverlayManager::Set::Set(Platform &platform)
    : fade(*platform.mainLoop, *platform.appearance, [this](double opacity) {
          if (!blends)
              return;
          for (const auto &window : windows)
              window->setWindowOpacity(opacity);
      }) {}

OverlayManager::OverlayManager(Platform &platform, BreakController &controller, Settings &settings,
                               HotKeyManager &hotKeys)
    : platform_(platform), controller_(controller), settings_(settings), hotKeys_(hotKeys),
      backgrounds_(settings, *platform.mainLoop), current_(std::make_unique<Set>(platform)) {
    backgrounds_.onLoaded = [this] {
        for (const auto &window : windows())
            window->view().update();
    };
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { followScreens(); });
}

OverlayManager::~OverlayManager() {
    hotKeys_.unregisterEscape();
}

void OverlayManager::show() {
    if (!windows().empty())
        return;
    current_->blends = platform_.windowLayers->canBlend();
    for (const Screen &screen : platform_.screens->all())
        build(screen);
    takeKeyboard();
    current_->fade.to(1, fadeIn);
    bindEscape();
    qGuiApp->installEventFilter(this);
}

void OverlayManager::build(const Screen &screen) {
    const auto role = screen.isMain ? BreakOverlayView::Role::primary : BreakOverlayView::Role::secondary;
    auto window = std::make_unique<OverlayWindow>(screen, makeView(role));
    window->orderFront(*platform_.windowLayers, screen, current_->blends ? 0 : 1);
    // When a screen goes, others can move.
    connect(window->screen(), &QScreen::geometryChanged, window.get(), [this] { followScreens(); });
    current_->windows.push_back(std::move(window));
}

std::unique_ptr<BreakOverlayView> OverlayManager::makeView(BreakOverlayView::Role role) {
    return std::make_unique<BreakOverlayView>(controller_, settings_, platform_, backgrounds_, role);
}

/// Null when no window has the text.
OverlayWindow *OverlayManager::primaryWindow() const {
    const auto found =
        std::ranges::find_if(windows(), [](const auto &window) { return window->view().isPrimary(); });
    return found == windows().end() ? nullptr : found->get();
}

void OverlayManager::takeKeyboard() {
    if (windows().empty())
        return;
    OverlayWindow *primary = primaryWindow();
    const OverlayWindow &window = primary ? *primary : *windows().front();
    platform_.windowLayers->takeKeyboard(*window.windowHandle());
}

void OverlayManager::bindEscape() {
    if (!settings_.isSkipPermitted() || hotKeys_.holds(HotKeyManager::escapeID))
        return;
    hotKeys_.registerBinding(
        {HotKeyManager::escapeID, escapeKeyCode, 0, QStringLiteral("esc"), [self = QPointer(this)] {
             if (self)
                 self->cutShort();
         }});
}

void OverlayManager::cutShort() {
    controller_.endBreak(BreakController::Ending::cutShort);
}

/// Sees every key press that reaches the program while an overlay is up.
bool OverlayManager::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape &&
        settings_.isSkipPermitted()) {
        cutShort();
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void OverlayManager::hide() {
    hotKeys_.unregisterEscape();
    qGuiApp->removeEventFilter(this);
    if (windows().empty())
        return;
    leaving_.push_back(std::exchange(current_, std::make_unique<Set>(platform_)));
    Set *leaving = leaving_.back().get();
    for (const auto &window : leaving->windows)
        window->view().freeze();
    leaving->blends = platform_.windowLayers->canBlend();
    leaving->fade.to(0, fadeOut, [this, leaving] { letGo(leaving); });
}

void OverlayManager::letGo(const Set *gone) {
    // The next break may have begun meanwhile, and needs the keyboard itself.
    if (windows().empty())
        platform_.windowLayers->yieldKeyboard();
    std::erase_if(leaving_, [gone](const auto &set) { return set.get() == gone; });
    if (windows().empty() && leaving_.empty())
        backgrounds_.clear();
}

/// The windows stay exactly on their screens, and go with them.
void OverlayManager::followScreens() {
    const auto screens = platform_.screens->all();
    const bool hadPrimary = primaryWindow();
    const auto follow = [&screens](const std::unique_ptr<OverlayWindow> &window) {
        const auto screen = std::ranges::find(screens, window->screenName(), &Screen::name);
        if (screen == screens.end())
            return false;
        window->setGeometry(screen->frame.toRect());
        return true;
    };
    for (const auto &set : leaving_)
        std::erase_if(set->windows, std::not_fn(follow));
    std::erase_if(current_->windows, std::not_fn(follow));
    if (windows().empty() || !hadPrimary || primaryWindow())
        return;
    // Nobody should have to guess when the break ends.
    windows().front()->setView(makeView(BreakOverlayView::Role::primary));
    takeKeyboard();
}

} // namespace pavonel
