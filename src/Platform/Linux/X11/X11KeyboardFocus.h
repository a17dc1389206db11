#pragma once

#include "Platform/Linux/X11/X11Connection.h"

#include <QElapsedTimer>
#include <QTimer>

namespace pavonel {

/// Lends the keyboard to one of our windows and gives it back to whoever had it.
///
/// When a window of another program opens, that program or its manager may hand it the keyboard. We take it
/// back a few times for each window that opens, but a user or a program that insists is not fought.
///
/// Inside a Wayland session the compositor has the keys. It hears of the focus from the server, like any
/// window manager, and misses it while our window is still new to it: then we say it again. And of the
/// windows that open the server knows but few.
class X11KeyboardFocus {
public:
    explicit X11KeyboardFocus(std::shared_ptr<X11Connection> connection);

    void take(xcb_window_t window);
    void yield();

    /// To be told of every top-level window that appears.
    enum class Owner { we, others };
    void noticeMapped(xcb_window_t window, Owner owner);

private:
    void notice(const xcb_generic_event_t &event);
    xcb_window_t focused() const;
    bool isViewable(xcb_window_t window) const;
    void takeBack();
    void insist();
    void setFocus(xcb_window_t window);

    std::shared_ptr<X11Connection> connection_;
    xcb_window_t ours_ = XCB_WINDOW_NONE;
    xcb_window_t previous_ = XCB_WINDOW_NONE;
    int takesBack_ = 0; ///< How often we still may, until another window opens.
    QElapsedTimer sinceTakenBack_;
    QTimer insistence_; ///< Inside a Wayland session, until the compositor has heard of us.
    X11Connection::SubscriptionHandle watch_;
    X11Connection::SubscriptionHandle listening_;
};

} // namespace pavonel
