#include "Platform/Linux/X11/X11Screens.h"

#include "Platform/Linux/X11/X11Points.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace pavonel {

X11Screens::X11Screens(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)), insideWayland_(connection_->isInsideWayland()),
      struts_(connection_),
      rootWatch_(connection_->watch(connection_->root(), XCB_EVENT_MASK_PROPERTY_CHANGE)),
      listening_(connection_->listen([this](const xcb_generic_event_t &event) { notice(event); })) {}

std::vector<Screen> X11Screens::all() {
    const auto worked = workedOn();
    const QScreen *main = worked ? screenShowing(*worked) : nullptr;
    if (!main)
        main = QGuiApplication::primaryScreen();
    std::vector<Screen> screens;
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached) {
        const QRect native = pixelsOf(screen);
        const QRect visible = struts_.visiblePart(native);
        const QRectF frame = screen->geometry();
        screens.push_back({screen->name(), frame, visible == native ? frame : pointsOfPixels(visible, screen),
                           screen == main});
    }
    return screens;
}

/// Inside a Wayland session the server knows only of X windows, and of the pointer only above these.
std::optional<QRect> X11Screens::workedOn() {
    if (insideWayland_)
        return std::nullopt;
    const auto active = activeWindow();
    return active ? active : pointer();
}

void X11Screens::notice(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (change.window == connection_->root() && change.atom == connection_->atom("_NET_ACTIVE_WINDOW"))
            activeOutdated_ = true;
        break;
    }
    case XCB_CONFIGURE_NOTIFY: // managers tell a window so of each of its moves, by whatever means
        if (reinterpret_cast<const xcb_configure_notify_event_t &>(event).window == activeId_)
            activeOutdated_ = true;
        break;
    case XCB_UNMAP_NOTIFY: // some managers go on naming a window that was closed
        if (reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window == activeId_)
            activeFrame_.reset();
        break;
    case XCB_MAP_NOTIFY:
        if (reinterpret_cast<const xcb_map_notify_event_t &>(event).window == activeId_)
            activeOutdated_ = true;
        break;
    default:
        break;
    }
}

std::optional<QRect> X11Screens::activeWindow() {
    if (std::exchange(activeOutdated_, false))
        activeFrame_ = readActiveWindow();
    return activeFrame_;
}

std::optional<QRect> X11Screens::readActiveWindow() {
    activeId_ = connection_->number(connection_->root(), "_NET_ACTIVE_WINDOW");
    activeWatch_.reset();
    if (activeId_ == XCB_WINDOW_NONE)
        return std::nullopt;
    activeWatch_ = connection_->watch(activeId_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto types = connection_->numbers(activeId_, "_NET_WM_WINDOW_TYPE");
    if (std::find(types.begin(), types.end(), connection_->atom("_NET_WM_WINDOW_TYPE_DESKTOP")) !=
        types.end())
        return std::nullopt; // the desktop's icons, over all monitors: the pointer tells more
    return connection_->frame(activeId_);
}

std::optional<QRect> X11Screens::pointer() {
    const XReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        connection_->xcb(), xcb_query_pointer(connection_->xcb(), connection_->root()), nullptr));
    if (!pointer)
        return std::nullopt;
    return QRect(pointer->root_x, pointer->root_y, 1, 1);
}

} // namespace pavonel
