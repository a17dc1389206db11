#include "Wayland/FakeCompositor.h"

#include <QAbstractEventDispatcher>

#include <ext-idle-notify-v1-server-protocol.h>
#include <kde-idle-server-protocol.h>
#include <wayland-server.h>

namespace pavonel::test {

/// What programs may ask.
struct Requests {
    static void destroy(wl_client *, wl_resource *resource) { wl_resource_destroy(resource); }
    static void ignore(wl_client *, wl_resource *) {}

    template <FakeCompositor::Notice::Kind kind>
    static void notify(wl_client *client, wl_resource *self, std::uint32_t id, std::uint32_t milliseconds,
                       wl_resource *) {
        FakeCompositor::of(self).take(client, id, kind, milliseconds);
    }
    static void notifyKde(wl_client *client, wl_resource *self, std::uint32_t id, wl_resource *,
                          std::uint32_t milliseconds) {
        FakeCompositor::of(self).take(client, id, FakeCompositor::Notice::Kind::kde, milliseconds);
    }
    static void noDevice(wl_client *client, wl_resource *, std::uint32_t) {
        wl_client_post_no_memory(client);
    }

    static constexpr struct ext_idle_notifier_v1_interface notifier {
        destroy, notify<FakeCompositor::Notice::Kind::ofScreen>, notify<FakeCompositor::Notice::Kind::ofInput>
    };
    static constexpr struct ext_idle_notification_v1_interface notification { destroy };
    static constexpr struct org_kde_kwin_idle_interface kdeIdle { notifyKde };
    static constexpr struct org_kde_kwin_idle_timeout_interface kdeTimeout { destroy, ignore };
    static constexpr struct wl_seat_interface seat { noDevice, noDevice, noDevice, destroy };
};

namespace {

template <const auto &interface, const auto &requests>
void bind(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id) {
    wl_resource *resource = wl_resource_create(client, &interface, static_cast<int>(version), id);
    wl_resource_set_implementation(resource, &requests, compositor, nullptr);
}

FakeCompositor::Offer offer(wl_display *display, const wl_interface &interface, int version,
                            FakeCompositor *compositor, wl_global_bind_func_t bindTo) {
    return {wl_global_create(display, &interface, version, compositor, bindTo), &wl_global_destroy};
}

} // namespace

FakeCompositor::FakeCompositor()
    : display_(wl_display_create()), socket_(wl_display_add_socket_auto(display_)),
      notifier_(wl_event_loop_get_fd(wl_display_get_event_loop(display_)), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                     [this] { wl_event_loop_dispatch(wl_display_get_event_loop(display_), 0); });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &notifier_, [this] { wl_display_flush_clients(display_); });
}

FakeCompositor::~FakeCompositor() {
    wl_display_destroy_clients(display_);
    wl_display_destroy(display_);
}

FakeCompositor::Offer FakeCompositor::offerSeat() {
    constexpr int version = 5;
    return offer(display_, wl_seat_interface, version, this, bind<wl_seat_interface, Requests::seat>);
}

FakeCompositor::Offer FakeCompositor::offerIdleNotifier(int version) {
    return offer(display_, ext_idle_notifier_v1_interface, version, this,
                 bind<ext_idle_notifier_v1_interface, Requests::notifier>);
}

FakeCompositor::Offer FakeCompositor::offerKdeIdle() {
    return offer(display_, org_kde_kwin_idle_interface, 1, this,
                 bind<org_kde_kwin_idle_interface, Requests::kdeIdle>);
}

FakeCompositor &FakeCompositor::of(wl_resource *resource) {
    return *static_cast<FakeCompositor *>(wl_resource_get_user_data(resource));
}

void FakeCompositor::take(wl_client *client, std::uint32_t id, Notice::Kind kind,
                          std::uint32_t milliseconds) {
    const bool isKde = kind == Notice::Kind::kde;
    wl_resource *resource = wl_resource_create(
        client, isKde ? &org_kde_kwin_idle_timeout_interface : &ext_idle_notification_v1_interface, 1, id);
    const void *requests = isKde ? static_cast<const void *>(&Requests::kdeTimeout) : &Requests::notification;
    wl_resource_set_implementation(resource, requests, this, [](wl_resource *gone) {
        std::erase_if(of(gone).notices_, [gone](const Notice &notice) { return notice.resource == gone; });
    });
    notices_.push_back({kind, resource, milliseconds});
}

void FakeCompositor::tellIdle(const Notice &notice) {
    if (notice.kind == Notice::Kind::kde)
        org_kde_kwin_idle_timeout_send_idle(notice.resource);
    else
        ext_idle_notification_v1_send_idled(notice.resource);
}

void FakeCompositor::tellResumed(const Notice &notice) {
    if (notice.kind == Notice::Kind::kde)
        org_kde_kwin_idle_timeout_send_resumed(notice.resource);
    else
        ext_idle_notification_v1_send_resumed(notice.resource);
}

void FakeCompositor::accuse() {
    wl_client *client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(display_)) wl_client_post_no_memory(client);
}

} // namespace pavonel::test
