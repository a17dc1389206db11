#include "Platform/Linux/X11/X11IdleTime.h"

#include "Platform/Linux/X11/X11Connection.h"

#include <utility>

#include <xcb/screensaver.h>

namespace pavonel {

std::unique_ptr<IdleTime> X11IdleTime::make(std::shared_ptr<X11Connection> connection) {
    const auto *extension = xcb_get_extension_data(connection->xcb(), &xcb_screensaver_id);
    if (!extension || !extension->present)
        return nullptr;
    return std::unique_ptr<IdleTime>(new X11IdleTime(std::move(connection)));
}

X11IdleTime::X11IdleTime(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

Seconds X11IdleTime::idleSeconds() {
    const auto cookie = xcb_screensaver_query_info(connection_->xcb(), connection_->root());
    const XReply<xcb_screensaver_query_info_reply_t> info(
        xcb_screensaver_query_info_reply(connection_->xcb(), cookie, nullptr));
    return info ? info->ms_since_user_input / 1000.0 : 0;
}

} // namespace pavonel
