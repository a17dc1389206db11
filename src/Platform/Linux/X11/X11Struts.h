#pragma once

#include "Platform/Linux/X11/X11Connection.h"

#include <QRect>

#include <map>
#include <optional>
#include <vector>

namespace pavonel {

/// What docks and panels leave of the monitors, in the server's pixels. Read again only after a change.
///
/// The desktop's own work area would be simpler, but it is one rectangle over all monitors: a dock on one of
/// them takes room away on the others too.
class X11Struts {
public:
    explicit X11Struts(std::shared_ptr<X11Connection> connection);

    QRect visiblePart(const QRect &monitor);

private:
    /// The twelve numbers of _NET_WM_STRUT_PARTIAL: how far a dock reaches in from the left, right, top and
    /// bottom edge of the whole desktop, and from where to where along each of these edges.
    using Strut = std::vector<std::uint32_t>;
    struct Window {
        std::optional<Strut> strut;
        X11Connection::SubscriptionHandle watch; ///< Of a dock.
    };

    void notice(const xcb_generic_event_t &event);
    void noticeProperty(const xcb_property_notify_event_t &change);
    void readAgain();
    void readStrutsOf(const std::vector<xcb_window_t> &windows);

    std::shared_ptr<X11Connection> connection_;
    QSize desktop_;
    std::map<xcb_window_t, Window> windows_;
    bool outdated_ = true;
    X11Connection::SubscriptionHandle rootWatch_;
    X11Connection::SubscriptionHandle listening_;
};

} // namespace pavonel
