#include "Platform/Linux/X11/X11WindowLayers.h"

#include "Platform/Linux/X11/X11Inset.h"
#include "Platform/Linux/X11/X11Points.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <optional>
#include <utility>

#include <xcb/shape.h>
#include <xcb/xcb_icccm.h>

namespace pavonel {

namespace {

/// More often in a second, and some window insists on lying above too: then we try again a second later.
constexpr int raisesInASecond = 10;

/// Screens of odd sizes are no whole number of points under a fractional scale, and Qt paints whole points
/// only. So a window that would end a part of a pixel before its screen does gets one more.
int paintedLength(int pixels, qreal scale) {
    int length = pixels;
    while (qRound(length / scale) * scale < pixels)
        ++length;
    return length;
}

/// The server has a window of this number by now.
xcb_window_t numberOf(QWindow &window) {
    const auto id = static_cast<xcb_window_t>(window.winId());
    X11Connection::awaitQt();
    return id;
}

std::optional<QRect> coveringFrame(const QString &screenName) {
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached) {
        if (screen->name() != screenName)
            continue;
        const QRect frame = pixelsOf(screen);
        const qreal scale = screen->devicePixelRatio();
        return QRect(frame.topLeft(),
                     QSize(paintedLength(frame.width(), scale), paintedLength(frame.height(), scale)));
    }
    return std::nullopt;
}

} // namespace

X11WindowLayers::X11WindowLayers(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)), keyboard_(connection_), allowance_(raisesInASecond) {
    checkSoon_.setSingleShot(true);
    QObject::connect(&checkSoon_, &QTimer::timeout, &checkSoon_, [this] { check(); });
    newAllowance_.setSingleShot(true);
    newAllowance_.setInterval(1000);
    QObject::connect(&newAllowance_, &QTimer::timeout, &newAllowance_, [this] {
        if (std::exchange(allowance_, raisesInASecond) == 0)
            check();
    });
}

X11WindowLayers::~X11WindowLayers() = default;

Qt::WindowFlags X11WindowLayers::windowFlags(WindowLayer layer) const {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;
    return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
}

void X11WindowLayers::show(QWindow &window, WindowLayer layer, const Screen &screen) {
    const xcb_window_t id = numberOf(window);
    constexpr char windowClass[] = "pavonel\0pavonel"; // whatever name the program was started under
    xcb_icccm_set_wm_class(connection_->xcb(), id, sizeof windowClass, windowClass);
    forget(&window);
    windows_.push_back({&window, id, layer, screen.name});
    QObject::connect(&window, &QWindow::visibleChanged, &checkSoon_, [this] { followVisibility(); });
    QObject::connect(&window, &QObject::destroyed, &checkSoon_, [this, gone = &window] {
        forget(gone);
        followVisibility();
    });
    followVisibility();
    window.show();
}

void X11WindowLayers::forget(const QWindow *window) {
    QObject::disconnect(window, nullptr, &checkSoon_, nullptr);
    std::erase_if(windows_,
                  [&](const Layered &each) { return each.window.isNull() || each.window == window; });
}

/// Events of all top-level windows are worth their wake-ups only while we show something.
void X11WindowLayers::followVisibility() {
    if (wantedOrder().empty()) {
        listening_.reset();
        rootWatch_.reset();
        belowOf_.clear();
        connection_->flush();
        return;
    }
    if (!rootWatch_) {
        rootWatch_ = connection_->watch(connection_->root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        listening_ = connection_->listen([this](const xcb_generic_event_t &event) { notice(event); });
        managersWindow_ = connection_->windowManager();
    }
    checkSoon();
}

void X11WindowLayers::notice(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_MAP_NOTIFY:
        noticeMapped(reinterpret_cast<const xcb_map_notify_event_t &>(event));
        break;
    case XCB_CONFIGURE_NOTIFY:
        noticeConfigured(reinterpret_cast<const xcb_configure_notify_event_t &>(event));
        break;
    case XCB_CIRCULATE_NOTIFY:
        checkSoon();
        break;
    case XCB_DESTROY_NOTIFY:
        belowOf_.erase(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        break;
    default:
        break;
    }
}

void X11WindowLayers::noticeMapped(const xcb_map_notify_event_t &event) {
    if (event.event != connection_->root())
        return;
    const Layered *own = find(event.window);
    if (own)
        keepFrame(*own);
    keyboard_.noticeMapped(event.window, own ? X11KeyboardFocus::Owner::we : X11KeyboardFocus::Owner::others);
    // Menus and tooltips open above panels, but nothing opens above a break.
    if (own || isManaged(event.window, event.override_redirect) || isOverlayVisible())
        checkSoon();
}

void X11WindowLayers::noticeConfigured(const xcb_configure_notify_event_t &event) {
    if (event.event != connection_->root())
        return;
    if (const Layered *own = find(event.window)) {
        keepFrame(*own);
        return;
    }
    const auto [known, isNew] = belowOf_.try_emplace(event.window, event.above_sibling);
    const bool onlyMoved = !isNew && std::exchange(known->second, event.above_sibling) == event.above_sibling;
    if (!onlyMoved && isManaged(event.window, event.override_redirect))
        checkSoon();
}

/// Qt rounds a place and a size in points to pixels by itself, and not always to the screen's of this moment.
void X11WindowLayers::keepFrame(const Layered &layered) {
    const auto frame =
        layered.layer == WindowLayer::overlay ? coveringFrame(layered.screenName) : std::nullopt;
    if (!frame)
        return;
    const std::int32_t values[] = {frame->x(), frame->y(), frame->width(), frame->height()};
    xcb_configure_window(connection_->xcb(), layered.id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

bool X11WindowLayers::isOverlayVisible() const {
    return std::any_of(windows_.begin(), windows_.end(), [](const Layered &each) {
        return each.layer == WindowLayer::overlay && each.window && each.window->isVisible();
    });
}

/// The manager's frames, and the windows it left in place. All else (menus, screen lockers) looks after
/// itself: such a window may raise itself above ours and stay there, as a locker must.
bool X11WindowLayers::isManaged(xcb_window_t window, bool overrideRedirect) const {
    const bool isOfManager = managersWindow_ && connection_->haveSameClient(window, managersWindow_);
    return isOfManager || !overrideRedirect;
}

const X11WindowLayers::Layered *X11WindowLayers::find(xcb_window_t window) const {
    const auto found = std::find_if(windows_.begin(), windows_.end(),
                                    [&](const Layered &each) { return each.id == window; });
    return found == windows_.end() ? nullptr : &*found;
}

/// Once for all events that came together.
void X11WindowLayers::checkSoon() {
    if (!checkSoon_.isActive())
        checkSoon_.start(0);
}

/// Ours that are visible, from bottom to top.
std::vector<xcb_window_t> X11WindowLayers::wantedOrder() const {
    std::vector<xcb_window_t> order;
    for (const WindowLayer layer : {WindowLayer::panel, WindowLayer::overlay}) {
        for (const Layered &each : windows_) {
            if (each.layer == layer && each.window && each.window->isVisible())
                order.push_back(each.id);
        }
    }
    return order;
}

void X11WindowLayers::check() {
    const auto order = wantedOrder();
    if (order.empty())
        return;
    const XReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        connection_->xcb(), xcb_query_tree(connection_->xcb(), connection_->root()), nullptr));
    if (!tree)
        return;
    const xcb_window_t *stack = xcb_query_tree_children(tree.get());
    const auto height = static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()));
    const bool inPlace =
        height >= order.size() && std::equal(order.begin(), order.end(), stack + (height - order.size()));
    if (!inPlace)
        raise(order);
}

void X11WindowLayers::raise(const std::vector<xcb_window_t> &order) {
    if (!newAllowance_.isActive())
        newAllowance_.start();
    if (allowance_ == 0)
        return;
    --allowance_;
    // The topmost first, the others right below it: none passes over another on its way and makes it paint.
    const std::uint32_t top = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_->xcb(), order.back(), XCB_CONFIG_WINDOW_STACK_MODE, &top);
    for (std::size_t index = order.size() - 1; index > 0; --index) {
        const std::uint32_t below[] = {order[index], XCB_STACK_MODE_BELOW};
        xcb_configure_window(connection_->xcb(), order[index - 1],
                             XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, below);
    }
    connection_->flush();
}

/// Whoever composites the screen owns this selection.
bool X11WindowLayers::canBlend() const {
    const QByteArray selection = "_NET_WM_CM_S" + QByteArray::number(connection_->screenNumber());
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_->xcb(),
        xcb_get_selection_owner(connection_->xcb(), connection_->atom(selection.constData())), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

std::unique_ptr<Inset> X11WindowLayers::inset(QWindow &window, const QRect &points) {
    return X11Inset::make(connection_, window, points);
}

void X11WindowLayers::cutTo(QWindow &window, const QRegion &pixels) {
    const xcb_window_t id = numberOf(window);
    std::vector<xcb_rectangle_t> shape;
    for (const QRect &part : pixels)
        shape.push_back({static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                         static_cast<std::uint16_t>(part.width()),
                         static_cast<std::uint16_t>(part.height())});
    xcb_shape_rectangles(connection_->xcb(), XCB_SHAPE_SO_SET,
                         canBlend() ? XCB_SHAPE_SK_INPUT : XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_BANDED,
                         id, 0, 0, static_cast<std::uint32_t>(shape.size()), shape.data());
    connection_->flush();
}

void X11WindowLayers::takeKeyboard(QWindow &window) {
    keyboard_.take(static_cast<xcb_window_t>(window.winId()));
}

void X11WindowLayers::yieldKeyboard() {
    keyboard_.yield();
}

} // namespace pavonel
