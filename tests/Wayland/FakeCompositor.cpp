#include "Wayland/FakeCompositor.h"

#include <QAbstractEventDispatcher>

#include <ext-idle-notify-v1-server-protocol.h>
#include <kde-idle-server-protocol.h>
#include <wayland-server.h>
#include <wlr-foreign-toplevel-management-unstable-v1-server-protocol.h>

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

    static void bindToplevels(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id) {
        auto &fake = *static_cast<FakeCompositor *>(compositor);
        fake.toplevels_ = wl_resource_create(client, &zwlr_foreign_toplevel_manager_v1_interface,
                                             static_cast<int>(version), id);
        wl_resource_set_implementation(fake.toplevels_, &toplevels, compositor, [](wl_resource *gone) {
            wl_resource *&bound = FakeCompositor::of(gone).toplevels_;
            if (bound == gone)
                bound = nullptr;
        });
    }
    static void ignoreActivate(wl_client *, wl_resource *, wl_resource *) {}
    static void ignoreRectangle(wl_client *, wl_resource *, wl_resource *, std::int32_t, std::int32_t,
                                std::int32_t, std::int32_t) {}
    static constexpr struct zwlr_foreign_toplevel_manager_v1_interface toplevels { ignore };
    static constexpr struct zwlr_foreign_toplevel_handle_v1_interface toplevel {
        ignore, ignore, ignore, ignore, ignoreActivate, ignore, ignoreRectangle, destroy
    };
};

namespace {

template <const auto &interface, const auto &requests>
void bind(wl_client *client, void *compositor, std::uint32_t version, std::uint32_t id) {
    wl_resource *resource = wl_resource_create(client, &interface, static_cast<int>(version), id);
    wl_resource_set_implementation(resource, &requests, compositor, nullptr);
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

FakeCompositor::Offer FakeCompositor::offer(const wl_interface &interface, int version, void *data,
                                            Bind bind) {
    return {wl_global_create(display_, &interface, version, data, bind), &wl_global_destroy};
}

FakeCompositor::Offer FakeCompositor::offerSeat() {
    constexpr int version = 5;
    return offer(wl_seat_interface, version, this, bind<wl_seat_interface, Requests::seat>);
}

FakeCompositor::Offer FakeCompositor::offerIdleNotifier(int version) {
    return offer(ext_idle_notifier_v1_interface, version, this,
                 bind<ext_idle_notifier_v1_interface, Requests::notifier>);
}

FakeCompositor::Offer FakeCompositor::offerKdeIdle() {
    return offer(org_kde_kwin_idle_interface, 1, this, bind<org_kde_kwin_idle_interface, Requests::kdeIdle>);
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

FakeCompositor::Offer FakeCompositor::offerToplevels() {
    return offer(zwlr_foreign_toplevel_manager_v1_interface, 2, this, &Requests::bindToplevels);
}

FakeCompositor::Window FakeCompositor::openWindow() {
    constexpr std::uint32_t anyNumber = 0;
    wl_resource *window = wl_resource_create(wl_resource_get_client(toplevels_),
                                             &zwlr_foreign_toplevel_handle_v1_interface, 2, anyNumber);
    wl_resource_set_implementation(window, &Requests::toplevel, this, nullptr);
    zwlr_foreign_toplevel_manager_v1_send_toplevel(toplevels_, window);
    return window;
}

void FakeCompositor::tell(Window window, const char *application, State state) {
    wl_array states;
    wl_array_init(&states);
    const auto add = [&](std::uint32_t each) {
        *static_cast<std::uint32_t *>(wl_array_add(&states, sizeof each)) = each;
    };
    if (state != State::behind)
        add(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
    if (state == State::fullscreen)
        add(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN);
    zwlr_foreign_toplevel_handle_v1_send_app_id(window, application);
    zwlr_foreign_toplevel_handle_v1_send_state(window, &states);
    zwlr_foreign_toplevel_handle_v1_send_done(window);
    wl_array_release(&states);
}

void FakeCompositor::close(Window window) {
    zwlr_foreign_toplevel_handle_v1_send_closed(window);
}

void FakeCompositor::finishToplevels() {
    zwlr_foreign_toplevel_manager_v1_send_finished(toplevels_);
    wl_resource_destroy(toplevels_); // so says the protocol
}

void FakeCompositor::accuse() {
    wl_client *client = nullptr;
    wl_client_for_each(client, wl_display_get_client_list(display_)) wl_client_post_no_memory(client);
}

} // namespace pavonel::test
