#include "UI/BreakOverlay.h"

#include <QBackingStore>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

constexpr Seconds fadeIn = 0.45;
constexpr Seconds fadeOut = 0.3; // going is quicker than coming
constexpr std::uint32_t escapeKeyCode = 53;

double pixelRatio(const Screen &screen) {
    const auto all = QGuiApplication::screens();
    const auto found = std::ranges::find(all, screen.name, &QScreen::name);
    return found == all.end() ? qGuiApp->devicePixelRatio() : (*found)->devicePixelRatio();
}

} // namespace

OverlayWindow::OverlayWindow(const Screen &screen, Fading fading, std::unique_ptr<BreakOverlayView> view)
    : screenName_(screen.name), opacity_(*this, fading) {
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

void OverlayWindow::orderFront(WindowLayers &layers, const Screen &screen) {
    setWindowFlags(layers.windowFlags(WindowLayer::overlay));
    setGeometry(screen.frame.toRect());
    winId();
    // Now, for while the server takes over another window's painting it lets us wait for the memory.
    backingStore()->resize(size());
    layers.show(*windowHandle(), WindowLayer::overlay, screen);
}

/// A break cannot be closed away.
void OverlayWindow::closeEvent(QCloseEvent *event) {
    event->ignore();
}

void OverlayWindow::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    view_->setGeometry(rect());
}

OverlayManager::Set::Set(const DisplayServices &display)
    : fade(display.loop, display.appearance, [this](double opacity) {
          for (const auto &window : windows)
              window->setOpacity(opacity);
      }) {}

/// The windows stay exactly on their screens, and go with them.
void OverlayManager::Set::follow(const std::vector<Screen> &attached) {
    std::erase_if(windows, [&attached](const auto &window) {
        const auto screen = std::ranges::find(attached, window->screenName(), &Screen::name);
        if (screen != attached.end())
            window->setGeometry(screen->frame.toRect());
        return screen == attached.end();
    });
}

/// The fade is over, and what moves may have windows of its own.
void OverlayManager::Set::settle() {
    for (const auto &window : windows)
        window->view().settle();
}

bool OverlayManager::Set::covers(const Screen &screen) const {
    return std::ranges::any_of(windows,
                               [&](const auto &window) { return window->screenName() == screen.name; });
}

OverlayManager::OverlayManager(const DisplayServices &display, BreakController &controller,
                               Settings &settings, HotKeyManager &hotKeys)
    : display_(display), controller_(controller), settings_(settings), hotKeys_(hotKeys),
      backgrounds_(settings, display.loop), current_(std::make_unique<Set>(display)),
      screenChanges_([this] { followScreens(); }) {
    backgrounds_.onLoaded = [this] {
        for (const auto &window : windows())
            window->view().update();
    };
}

OverlayManager::~OverlayManager() {
    hotKeys_.unregisterEscape();
}

/// Only a picture takes long.
void OverlayManager::expect() {
    if (settings_.customBackgroundPath->isEmpty())
        return;
    std::vector<QSize> sizes;
    for (const Screen &screen : display_.screens.all())
        sizes.push_back(screen.frame.toRect().size() * pixelRatio(screen));
    backgrounds_.prepare(sizes);
}

/// Not now: where the break begins at once, its windows will be up.
void OverlayManager::standDown() {
    display_.loop.post(lifetime_.guard([this] { giveBackIfIdle(); }));
}

void OverlayManager::giveBackIfIdle() {
    if (current_->screens.empty() && leaving_.empty())
        backgrounds_.clear();
}

void OverlayManager::show() {
    if (!current_->screens.empty())
        return;
    expect();
    backgrounds_.awaitPictures();
    for (const Screen &screen : display_.screens.all()) {
        build(screen, screen.isMain ? BreakOverlayView::Role::primary : BreakOverlayView::Role::secondary);
        current_->screens.push_back(screen.name);
        current_->showsText |= screen.isMain;
    }
    takeKeyboard();
    current_->fade.to(1, fadeIn, [shown = current_.get()] { shown->settle(); });
    bindEscape();
    qGuiApp->installEventFilter(this);
}

void OverlayManager::build(const Screen &screen, BreakOverlayView::Role role) {
    const Fading fading = fadingOn(display_.layers);
    current_->windows.push_back(std::make_unique<OverlayWindow>(screen, fading, makeView(role)));
    current_->windows.back()->setOpacity(current_->fade.opacity());
    current_->windows.back()->orderFront(display_.layers, screen);
}

std::unique_ptr<BreakOverlayView> OverlayManager::makeView(BreakOverlayView::Role role) {
    return std::make_unique<BreakOverlayView>(controller_, settings_, display_, backgrounds_, role);
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
    display_.layers.takeKeyboard(*window.windowHandle());
}

void OverlayManager::bindEscape() {
    if (!settings_.isSkipPermitted() || hotKeys_.holds(HotKeyManager::escapeID))
        return;
    hotKeys_.registerBinding({HotKeyManager::escapeID, escapeKeyCode, 0, QStringLiteral("esc"),
                              lifetime_.guard([this] { cutShort(); })});
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
    if (current_->screens.empty())
        return;
    leaving_.push_back(std::exchange(current_, std::make_unique<Set>(display_)));
    Set *leaving = leaving_.back().get();
    for (const auto &window : leaving->windows)
        window->view().freeze();
    leaving->fade.to(0, fadeOut, [this, leaving] { letGo(leaving); });
}

void OverlayManager::letGo(const Set *gone) {
    // The next break may have begun meanwhile, and needs the keyboard itself.
    const bool hidden = current_->screens.empty();
    if (hidden)
        display_.layers.yieldKeyboard();
    std::erase_if(leaving_, [gone](const auto &set) { return set.get() == gone; });
    giveBackIfIdle();
}

void OverlayManager::followScreens() {
    if (current_->screens.empty() && leaving_.empty())
        return;
    const auto attached = display_.screens.all();
    for (const auto &set : leaving_)
        set->follow(attached);
    current_->follow(attached);
    if (current_->screens.empty())
        return;
    // While its mode changes, a screen may be gone for a moment.
    const bool anyMayBeBack = !display_.screens.keepNames();
    for (const Screen &screen : attached) {
        if ((anyMayBeBack || current_->screens.contains(screen.name)) && !current_->covers(screen))
            build(screen, BreakOverlayView::Role::secondary);
    }
    keepText();
}

/// Nobody should have to guess when the break ends.
void OverlayManager::keepText() {
    if (windows().empty() || !current_->showsText || primaryWindow())
        return;
    windows().front()->setView(makeView(BreakOverlayView::Role::primary));
    takeKeyboard();
}

} // namespace pavonel
