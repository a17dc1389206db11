#include "Platform/Linux/X11/X11KeyboardFocus.h"

#include <utility>

namespace pavonel {

namespace {

/// Some managers focus a new window more than once, and some programs do it besides.
constexpr int mostAttempts = 3;

/// After which a loss inside a Wayland session counts as that to another window.
constexpr int renewal = 2000; // milliseconds

/// How long we wait for the compositor to hear of us, twice as long each time.
constexpr int firstInsistence = 50;   // milliseconds
constexpr int lastInsistence = 10000; // milliseconds

} // namespace

X11KeyboardFocus::X11KeyboardFocus(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {
    insistence_.setSingleShot(true);
    QObject::connect(&insistence_, &QTimer::timeout, &insistence_, [this] { insist(); });
}

void X11KeyboardFocus::take(xcb_window_t window) {
    const xcb_window_t focus = focused();
    if (ours_ == XCB_WINDOW_NONE || focus != ours_)
        previous_ = focus;
    ours_ = window;
    takesBack_ = mostAttempts; // with an activation that was under way when we took it
    watch_ = connection_->watch(window, XCB_EVENT_MASK_FOCUS_CHANGE);
    listening_ = connection_->listen([this](const xcb_generic_event_t &event) { notice(event); });
    setFocus(window); // refused while it is not on screen yet: `noticeMapped` repeats it
    connection_->flush();
    if (connection_->isInsideWayland())
        insistence_.start(firstInsistence);
}

void X11KeyboardFocus::yield() {
    if (ours_ == XCB_WINDOW_NONE)
        return;
    watch_.reset();
    listening_.reset();
    insistence_.stop();
    const xcb_window_t ours = std::exchange(ours_, XCB_WINDOW_NONE);
    // A window manager that gives the keyboard to somebody in this moment does so before we look or after we
    // have spoken, and so has the last word.
    xcb_grab_server(connection_->xcb());
    if (focused() == ours) {
        const xcb_window_t active = connection_->number(connection_->root(), "_NET_ACTIVE_WINDOW");
        if (isViewable(previous_))
            setFocus(previous_);
        else
            setFocus(isViewable(active) ? active : xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT});
    }
    xcb_ungrab_server(connection_->xcb());
    connection_->flush();
}

void X11KeyboardFocus::noticeMapped(xcb_window_t window, Owner owner) {
    if (owner == Owner::others)
        takesBack_ = mostAttempts;
    else if (window == ours_)
        setFocus(ours_);
}

void X11KeyboardFocus::notice(const xcb_generic_event_t &event) {
    if ((event.response_type & 0x7f) != XCB_FOCUS_OUT)
        return;
    const auto &out = reinterpret_cast<const xcb_focus_out_event_t &>(event);
    const bool focusMoved = out.mode == XCB_NOTIFY_MODE_NORMAL && out.detail != XCB_NOTIFY_DETAIL_INFERIOR &&
                            out.detail != XCB_NOTIFY_DETAIL_POINTER;
    if (out.event == ours_ && focusMoved && focused() != ours_)
        takeBack();
}

void X11KeyboardFocus::takeBack() {
    const bool isInsideWayland = connection_->isInsideWayland();
    if (isInsideWayland && sinceTakenBack_.isValid() && sinceTakenBack_.hasExpired(renewal))
        takesBack_ = mostAttempts;
    if (takesBack_ == 0)
        return;
    --takesBack_;
    sinceTakenBack_.start();
    setFocus(ours_);
    if (isInsideWayland)
        insistence_.start(firstInsistence);
}

/// The compositor names the window that it gives the keys to as the active one. It hears of changes only.
void X11KeyboardFocus::insist() {
    if (connection_->number(connection_->root(), "_NET_ACTIVE_WINDOW") == ours_)
        return;
    setFocus(XCB_INPUT_FOCUS_POINTER_ROOT);
    setFocus(ours_);
    connection_->flush();
    if (insistence_.interval() < lastInsistence)
        insistence_.start(2 * insistence_.interval());
}

xcb_window_t X11KeyboardFocus::focused() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_->xcb(), xcb_get_input_focus(connection_->xcb()), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

bool X11KeyboardFocus::isViewable(xcb_window_t window) const {
    if (window <= XCB_INPUT_FOCUS_POINTER_ROOT)
        return false; // none, or whatever lies under the pointer: no window
    const XReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection_->xcb(), xcb_get_window_attributes(connection_->xcb(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

/// With the server's own time: the last one that we, or Qt, saw may be older than another program's.
void X11KeyboardFocus::setFocus(xcb_window_t window) {
    xcb_set_input_focus(connection_->xcb(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
}

} // namespace pavonel
