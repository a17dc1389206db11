#pragma once

#include <QSocketNotifier>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct wl_display;
struct wl_interface;
struct wl_registry;

namespace pavonel {

/// Our own connection to the Wayland compositor, for what has nothing to do with windows of ours: it works
/// too where Qt is on an X server beside the compositor, and an error of ours never reaches Qt.
/// Main thread only, and nobody waits for the compositor. One that is gone, or that errs, offers nothing any
/// more.
class WaylandConnection {
public:
    /// Null where no compositor answers. An empty name means the one that the environment names.
    static std::shared_ptr<WaylandConnection> open(const char *display = nullptr);

    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;
    ~WaylandConnection();

    /// Something that the compositor offers.
    struct Offer {
        std::string interface;
        std::uint32_t name; ///< One that comes back has another.
        std::uint32_t version;
        bool operator==(const Offer &) const = default;
    };

    /// What there is of an interface now, in the order in which it came. The first answer takes a moment.
    std::vector<Offer> offers(const wl_interface &interface) const;

    /// The offer in its own version, or in `newest` if that is older.
    template <class Object>
    Object *bind(const Offer &offer, const wl_interface &interface, std::uint32_t newest) {
        return static_cast<Object *>(bindObject(offer, interface, std::min(offer.version, newest)));
    }

    /// `changed` is called after something was offered or taken back, until what this gives is gone.
    using Listening = std::shared_ptr<const std::function<void()>>;
    [[nodiscard]] Listening onChange(std::function<void()> changed);

    /// False once the compositor is gone; it does not come back.
    bool isAlive() const { return notifier_.isEnabled(); }

    /// Sends what was asked so far.
    void flush();

private:
    explicit WaylandConnection(wl_display *display);

    void *bindObject(const Offer &offer, const wl_interface &interface, std::uint32_t version);
    void dispatch();
    void tellChange();

    wl_display *display_;
    wl_registry *registry_;
    QSocketNotifier notifier_;
    std::vector<Offer> offers_;
    bool changed_ = false;
    std::vector<std::weak_ptr<const std::function<void()>>> listeners_;
};

} // namespace pavonel
