#include "Platform/Linux/Wayland/WaylandConnection.h"

#include <utility>

#include <wayland-client.h>

namespace pavonel {

std::shared_ptr<WaylandConnection> WaylandConnection::open(const char *display) {
    wl_display *connected = wl_display_connect(display);
    return connected ? std::shared_ptr<WaylandConnection>(new WaylandConnection(connected)) : nullptr;
}

WaylandConnection::WaylandConnection(wl_display *display)
    : display_(display), registry_(wl_display_get_registry(display)),
      notifier_(wl_display_get_fd(display), QSocketNotifier::Read) {
    static const wl_registry_listener listener{
        [](void *self, wl_registry *, std::uint32_t name, const char *interface, std::uint32_t version) {
            auto &connection = *static_cast<WaylandConnection *>(self);
            connection.offers_.push_back({interface, name, version});
            connection.changed_ = true;
        },
        [](void *self, wl_registry *, std::uint32_t name) {
            auto &connection = *static_cast<WaylandConnection *>(self);
            std::erase_if(connection.offers_, [&](const Offer &offer) { return offer.name == name; });
            connection.changed_ = true;
        }};
    wl_registry_add_listener(registry_, &listener, this);
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { dispatch(); });
    flush();
}

WaylandConnection::~WaylandConnection() {
    notifier_.setEnabled(false);
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

std::vector<WaylandConnection::Offer> WaylandConnection::offers(const wl_interface &interface) const {
    std::vector<Offer> found;
    std::ranges::copy_if(offers_, std::back_inserter(found),
                         [&](const Offer &offer) { return offer.interface == interface.name; });
    return found;
}

void *WaylandConnection::bindObject(const Offer &offer, const wl_interface &interface,
                                    std::uint32_t version) {
    return wl_registry_bind(registry_, offer.name, &interface, version);
}

WaylandConnection::Listening WaylandConnection::onChange(std::function<void()> changed) {
    auto listening = std::make_shared<const std::function<void()>>(std::move(changed));
    listeners_.push_back(listening);
    return listening;
}

void WaylandConnection::flush() {
    if (isAlive())
        wl_display_flush(display_);
}

/// The socket is readable, so nothing of this waits.
void WaylandConnection::dispatch() {
    if (wl_display_prepare_read(display_) == 0)
        wl_display_read_events(display_);
    wl_display_dispatch_pending(display_);
    if (wl_display_get_error(display_) != 0) {
        notifier_.setEnabled(false);
        offers_.clear();
        changed_ = true;
    }
    if (std::exchange(changed_, false))
        tellChange();
    flush();
}

void WaylandConnection::tellChange() {
    std::erase_if(listeners_, [](const auto &listener) { return listener.expired(); });
    const auto listeners = listeners_; // a listener may begin or end to listen
    for (const auto &weak : listeners) {
        if (const auto listener = weak.lock())
            (*listener)();
    }
}

} // namespace pavonel
