#include "Platform/Linux/X11/X11Struts.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace pavonel {

namespace {

constexpr std::array strutProperties{"_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT"};
constexpr std::size_t edges = 4; // left, right, top, bottom
constexpr std::size_t partialLength = 12;

/// The older property has no stretches: a dock takes the whole edge.
std::vector<std::uint32_t> completed(std::vector<std::uint32_t> strut) {
    while (strut.size() < partialLength) {
        const bool isEnd = (strut.size() - edges) % 2 != 0;
        strut.push_back(isEnd ? std::numeric_limits<std::uint16_t>::max() : 0);
    }
    return strut;
}

struct Span {
    int from;
    int to; ///< Included.

    bool meets(const Span &other) const { return from <= other.to && other.from <= to; }
    bool holds(int place) const { return from < place && place < to; }
};

} // namespace

X11Struts::X11Struts(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)),
      rootWatch_(connection_->watch(connection_->root(),
                                    XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY)),
      listening_(connection_->listen([this](const xcb_generic_event_t &event) { notice(event); })) {}

void X11Struts::notice(const xcb_generic_event_t &event) {
    const int type = event.response_type & 0x7f;
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto &change = reinterpret_cast<const xcb_configure_notify_event_t &>(event);
        outdated_ = outdated_ || change.window == connection_->root();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        noticeProperty(reinterpret_cast<const xcb_property_notify_event_t &>(event));
    }
}

void X11Struts::noticeProperty(const xcb_property_notify_event_t &change) {
    const auto isAbout = [&](const char *property) { return change.atom == connection_->atom(property); };
    if (change.window == connection_->root()) {
        const bool someDockChanged = isAbout("_NET_WORKAREA");
        if (someDockChanged)
            windows_.clear();
        outdated_ = outdated_ || someDockChanged || isAbout("_NET_CLIENT_LIST");
    } else if (isAbout(strutProperties[0]) || isAbout(strutProperties[1])) {
        outdated_ = windows_.erase(change.window) > 0 || outdated_;
    }
}

/// Windows that we know are not asked again: there are many, and few are docks.
void X11Struts::readAgain() {
    outdated_ = false;
    const XReply<xcb_get_geometry_reply_t> desktop(xcb_get_geometry_reply(
        connection_->xcb(), xcb_get_geometry(connection_->xcb(), connection_->root()), nullptr));
    desktop_ = desktop ? QSize(desktop->width, desktop->height) : QSize();
    auto clients = connection_->numbers(connection_->root(), "_NET_CLIENT_LIST");
    std::sort(clients.begin(), clients.end());
    std::erase_if(windows_, [&](const auto &entry) {
        return !std::binary_search(clients.begin(), clients.end(), entry.first);
    });
    std::erase_if(clients, [&](xcb_window_t client) { return windows_.contains(client); });
    readStrutsOf(clients);
}

/// All questions first, so that there is one wait and not one for each window.
void X11Struts::readStrutsOf(const std::vector<xcb_window_t> &windows) {
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const xcb_window_t window : windows) {
        for (const char *property : strutProperties)
            cookies.push_back(xcb_get_property(connection_->xcb(), 0, window, connection_->atom(property),
                                               XCB_ATOM_CARDINAL, 0, partialLength));
    }
    auto cookie = cookies.begin();
    for (const xcb_window_t window : windows) {
        Window &entry = windows_[window];
        for (std::size_t property = 0; property < strutProperties.size(); ++property) {
            const XReply<xcb_get_property_reply_t> reply(
                xcb_get_property_reply(connection_->xcb(), *cookie++, nullptr));
            const auto *numbers =
                reply ? static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get())) : nullptr;
            const int count = reply ? xcb_get_property_value_length(reply.get()) / 4 : 0;
            if (!entry.strut && (count == int{edges} || count == int{partialLength}))
                entry.strut = completed({numbers, numbers + count});
        }
        if (entry.strut)
            entry.watch = connection_->watch(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
}

/// A dock counts on a monitor if its inner edge lies within: one at the left of the right monitor reaches in
/// from the left edge of the desktop over the whole left monitor, but takes nothing of that.
QRect X11Struts::visiblePart(const QRect &monitor) {
    if (outdated_)
        readAgain();
    QRect visible = monitor;
    const Span across{monitor.left(), monitor.right()};
    const Span down{monitor.top(), monitor.bottom()};
    for (const auto &[window, entry] : windows_) {
        if (!entry.strut)
            continue;
        const auto at = [&strut = *entry.strut](std::size_t index) {
            return static_cast<int>(std::min(strut[index], std::uint32_t{0xffff}));
        };
        const int left = at(0), right = desktop_.width() - at(1);
        const int top = at(2), bottom = desktop_.height() - at(3);
        if (across.holds(left) && down.meets({at(4), at(5)}))
            visible.setLeft(std::max(visible.left(), left));
        if (across.holds(right) && down.meets({at(6), at(7)}))
            visible.setRight(std::min(visible.right(), right - 1));
        if (down.holds(top) && across.meets({at(8), at(9)}))
            visible.setTop(std::max(visible.top(), top));
        if (down.holds(bottom) && across.meets({at(10), at(11)}))
            visible.setBottom(std::min(visible.bottom(), bottom - 1));
    }
    return visible.isEmpty() ? monitor : visible;
}

} // namespace pavonel
