#pragma once

#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_interface;
struct wl_resource;

namespace pavonel::test {

/// A compositor in this very process that offers what real ones of this system do not, and that can err. It
/// works while the main loop runs.
class FakeCompositor {
public:
    FakeCompositor();
    FakeCompositor(const FakeCompositor &) = delete;
    FakeCompositor &operator=(const FakeCompositor &) = delete;
    ~FakeCompositor();

    wl_display &display() { return *display_; }

    /// What to connect to.
    const char *socket() const { return socket_; }

    /// Something on offer, until this goes.
    using Offer = std::shared_ptr<wl_global>;
    using Bind = void (*)(wl_client *client, void *data, std::uint32_t version, std::uint32_t id);
    [[nodiscard]] Offer offer(const wl_interface &interface, int version, void *data, Bind bind);
    [[nodiscard]] Offer offerSeat();
    /// ext_idle_notifier_v1 in this version.
    [[nodiscard]] Offer offerIdleNotifier(int version);
    /// org_kde_kwin_idle
    [[nodiscard]] Offer offerKdeIdle();

    /// Of whose idleness a program asked to be told.
    struct Notice {
        enum class Kind { ofInput, ofScreen, kde };
        Kind kind;
        wl_resource *resource;
        std::uint32_t milliseconds;
        bool operator==(const Notice &) const = default;
    };
    const std::vector<Notice> &notices() const { return notices_; }
    void tellIdle(const Notice &notice);
    void tellResumed(const Notice &notice);

    /// zwlr_foreign_toplevel_manager_v1
    [[nodiscard]] Offer offerToplevels();

    /// A window of another program that this program is told of. Empty until it asks.
    using Window = wl_resource *;
    Window openWindow();
    enum class State { behind, active, fullscreen };
    static void tell(Window window, const char *application, State state);
    static void close(Window window);
    /// The service ends, though it stays on offer.
    void finishToplevels();
    bool isAskedForToplevels() const { return toplevels_ != nullptr; }

    /// All programs have committed a fatal error.
    void accuse();

private:
    void take(wl_client *client, std::uint32_t id, Notice::Kind kind, std::uint32_t milliseconds);

    static FakeCompositor &of(wl_resource *resource);
    friend struct Requests;

    wl_display *display_;
    const char *socket_;
    QSocketNotifier notifier_;
    std::vector<Notice> notices_;
    wl_resource *toplevels_ = nullptr; ///< The manager that a program bound last.
};

} // namespace pavonel::test
