#pragma once

#include "Platform/Linux/X11/X11Connection.h"
#include "Platform/Linux/X11/X11Struts.h"
#include "Platform/Screens.h"

#include <QRect>

#include <optional>

namespace pavonel {

/// The monitors as Qt knows them. The main one is that of the active window, else of the pointer, else the
/// primary one. While nothing changes, an answer costs no question to the server.
class X11Screens final : public Screens {
public:
    explicit X11Screens(std::shared_ptr<X11Connection> connection);

    std::vector<Screen> all() override;

private:
    void notice(const xcb_generic_event_t &event);
    std::optional<QRect> workedOn();
    std::optional<QRect> activeWindow();
    std::optional<QRect> readActiveWindow();
    std::optional<QRect> pointer();

    std::shared_ptr<X11Connection> connection_;
    bool insideWayland_; ///< Asked once: screens are looked at thirty times a second.
    X11Struts struts_;
    xcb_window_t activeId_ = XCB_WINDOW_NONE;
    std::optional<QRect> activeFrame_; ///< In the server's pixels.
    bool activeOutdated_ = true;
    X11Connection::SubscriptionHandle activeWatch_;
    X11Connection::SubscriptionHandle rootWatch_;
    X11Connection::SubscriptionHandle listening_;
};

} // namespace pavonel
