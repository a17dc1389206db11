#include "Platform/Linux/Wayland/ForeignToplevels.h"

#include <QGuiApplication>

#include <algorithm>
#include <span>
#include <utility>

#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1-client-protocol.h>

namespace pavonel {

namespace {

/// The first version that tells about fullscreen.
constexpr std::uint32_t knownVersion = 2;

bool isOurs(const QString &application) {
    return application == QGuiApplication::desktopFileName() ||
           application == QCoreApplication::applicationName();
}

template <class... Arguments> void ignore(void *, zwlr_foreign_toplevel_handle_v1 *, Arguments...) {}

} // namespace

/// One window. What the compositor tells of it holds once it says that this was all.
class ForeignToplevels::Toplevel {
public:
    Toplevel(ForeignToplevels &all, zwlr_foreign_toplevel_handle_v1 *handle)
        : number(++all.opened_), all_(all), handle_(handle) {
        static const zwlr_foreign_toplevel_handle_v1_listener listener{
            .title = ignore,
            .app_id = [](void *self, auto *, const char *id) { of(self).told_.application = id; },
            .output_enter = ignore,
            .output_leave = ignore,
            .state = [](void *self, auto *, wl_array *states) { of(self).take(*states); },
            .done = [](void *self, auto *) { of(self).now = of(self).told_; },
            .closed = [](void *self, auto *) { of(self).close(); }};
        zwlr_foreign_toplevel_handle_v1_add_listener(handle_, &listener, this);
    }
    Toplevel(const Toplevel &) = delete;
    Toplevel &operator=(const Toplevel &) = delete;
    ~Toplevel() { zwlr_foreign_toplevel_handle_v1_destroy(handle_); }

    struct Properties {
        QByteArray application;
        bool isActivated = false;
        bool isFullscreen = false;
    };
    Properties now;
    const std::uint64_t number;

private:
    static Toplevel &of(void *self) { return *static_cast<Toplevel *>(self); }

    void take(const wl_array &array) {
        const std::span states(static_cast<const std::uint32_t *>(array.data),
                               array.size / sizeof(std::uint32_t));
        const auto has = [&](std::uint32_t state) {
            return std::ranges::find(states, state) != states.end();
        };
        told_.isActivated = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
        told_.isFullscreen = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN);
    }
    void close() {
        std::erase_if(all_.toplevels_, [this](const auto &each) { return each.get() == this; });
    }

    ForeignToplevels &all_;
    zwlr_foreign_toplevel_handle_v1 *handle_;
    Properties told_;
};

ForeignToplevels::ForeignToplevels(std::shared_ptr<WaylandConnection> connection)
    : connection_(std::move(connection)) {}

ForeignToplevels::~ForeignToplevels() {
    forget();
}

bool ForeignToplevels::isTelling() {
    return !connection_->offers(zwlr_foreign_toplevel_manager_v1_interface).empty();
}

void ForeignToplevels::subscribe() {
    static const zwlr_foreign_toplevel_manager_v1_listener listener{
        [](void *self, auto *, zwlr_foreign_toplevel_handle_v1 *handle) {
            auto &all = *static_cast<ForeignToplevels *>(self);
            all.toplevels_.push_back(std::make_unique<Toplevel>(all, handle));
        },
        [](void *self, auto *) { static_cast<ForeignToplevels *>(self)->forget(); }};
    const auto offers = connection_->offers(zwlr_foreign_toplevel_manager_v1_interface);
    const auto offer = offers.empty() ? std::nullopt : std::optional(offers.front());
    if (offer == offer_)
        return;
    forget();
    offer_ = offer;
    if (!offer)
        return;
    manager_ = connection_->bind<zwlr_foreign_toplevel_manager_v1>(
        *offer, zwlr_foreign_toplevel_manager_v1_interface, knownVersion);
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &listener, this);
    connection_->flush();
}

void ForeignToplevels::forget() {
    toplevels_.clear();
    if (manager_)
        zwlr_foreign_toplevel_manager_v1_destroy(std::exchange(manager_, nullptr));
}

const ForeignToplevels::Toplevel *ForeignToplevels::activated() {
    subscribe();
    const auto found =
        std::ranges::find_if(toplevels_, [](const auto &each) { return each->now.isActivated; });
    return found == toplevels_.end() ? nullptr : found->get();
}

std::optional<FrontWindow> ForeignToplevels::front() {
    const Toplevel *window = activated();
    const QString application = window ? QString::fromUtf8(window->now.application) : QString();
    if (!window || isOurs(application))
        return {};
    return FrontWindow{window->number, 0, application, {}};
}

/// Only the one in front: of the others nobody tells whether they can be seen.
std::vector<FullscreenWindow> ForeignToplevels::fullscreen() {
    const Toplevel *window = activated();
    return window && window->now.isFullscreen ? std::vector<FullscreenWindow>(1)
                                              : std::vector<FullscreenWindow>();
}

} // namespace pavonel
